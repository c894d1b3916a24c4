// The code of the formatting library itself, once for the program: with all of it in its headers, every source that
// formats a line took seconds longer to build. Debian's package has it as a shared library alone, and a tool that is
// copied to another machine has none there.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

template FMT_API auto dragonbox::to_decimal(float) noexcept -> dragonbox::decimal_fp<float>;
template FMT_API auto dragonbox::to_decimal(double) noexcept -> dragonbox::decimal_fp<double>;
template FMT_API auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref) -> char;
template FMT_API void buffer<char>::append(const char*, const char*);

}  // namespace detail
FMT_END_NAMESPACE
