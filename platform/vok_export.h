/* The export marks of the library's public surface: everything else stays hidden.
 *
 * A host that loads the shared library includes the public headers as they are. The library itself is
 * built with VOK_BUILDING defined; a program that links the static library defines VOK_STATIC. */
#ifndef VOK_PLATFORM_VOK_EXPORT_H
#define VOK_PLATFORM_VOK_EXPORT_H

/* Marks a public name. */
#if defined(VOK_STATIC)
#define VOK_API
#elif defined(_WIN32)
#if defined(VOK_BUILDING)
#define VOK_API __declspec(dllexport)
#else
#define VOK_API __declspec(dllimport)
#endif
#else
#define VOK_API __attribute__((visibility("default")))
#endif

#endif
