"""What kind of machine this is; nothing that would name it."""

import os
import platform
import re
import subprocess
from pathlib import Path


def first_match(path, pattern, otherwise):
    try:
        found = re.search(pattern, Path(path).read_text(), re.MULTILINE)
    except OSError:
        found = None
    return found.group(1).strip() if found else otherwise


def file_system(folder):
    told = subprocess.run(["stat", "-f", "-c", "%T", str(folder)], capture_output=True, text=True)
    return told.stdout.strip().replace("ext2/ext3", "ext4") or "unknown file system"


def description(folder):
    model = first_match("/proc/cpuinfo", r"^model name\s*:\s*(.*)$", platform.machine())
    memory = int(first_match("/proc/meminfo", r"^MemTotal:\s*(\d+)", "0")) / 1024 / 1024
    return (f"{os.cpu_count()} cores of {model}, {memory:.0f} GiB of memory, {file_system(folder)}, "
            f"{platform.system()} {platform.release()}")


def load_average():
    return os.getloadavg()[0]
