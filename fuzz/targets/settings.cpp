// The settings file: any text in it, and any value put into it. The first line is the value.

#include "engine/settings_store.h"
#include "engine/settings_text.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  const std::string_view text = fuzz::TextOf(data, size);
  const std::size_t half = size / 2;
  for (const std::size_t border : {half, text.find('\n')}) {
    if (border > size) continue;
    const std::string value(text.substr(0, border));
    const std::string_view file = text.substr(border);
    const auto other = FindSetting(file, "MenuSort");
    const std::string changed = ReplaceSetting(file, "MergeTmpDir", value);
    fuzz::Require(FindSetting(changed, "MergeTmpDir") == value, "what is stored is read again");
    fuzz::Require(FindSetting(changed, "MenuSort") == other, "other settings stay");
    fuzz::Require(ReplaceSetting(changed, "MergeTmpDir", value) == changed,
                  "storing it again changes nothing");

    testing::MemorySystem system;
    system.Put("/config/folioweld/settings.ini", std::string(file));
    SettingsStore settings(system);
    std::string read;
    // Any outcome will do, as long as there is one.
    static_cast<void>(settings.ReadSettingOrDefault("MenuShowLogWindow", read, "1"));
    fuzz::Require(settings.WriteSetting("MenuSort", value) == 0, "a setting can be stored whatever is there");
    fuzz::Require(settings.ReadSetting("MenuSort") == value.substr(0, value.find('\0')),
                  "and is read up to its first NUL");
  }
  return 0;
}
