#pragma once

// `UNDER_ADDRESS_SANITIZER` is defined in builds that reserve more memory than any limit leaves.

#if defined(__SANITIZE_ADDRESS__)
#define UNDER_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UNDER_ADDRESS_SANITIZER
#endif
#endif
