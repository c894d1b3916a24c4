// Which target a test runs on, for the few expectations that differ. Told from the width of a wide
// character, so that tests need no preprocessor switch.
#ifndef VOK_TESTS_SUPPORT_TARGETSYSTEM_H
#define VOK_TESTS_SUPPORT_TARGETSYSTEM_H

namespace testSupport {

/// True where an element of wide text is a UTF-16 unit (Windows), false where it is a code point
/// (POSIX).
constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;

constexpr bool onWindows = wideIsUtf16;

}  // namespace testSupport

#endif
