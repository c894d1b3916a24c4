/* vok_basic: string adapters, string lists, transliteration and suite paths, as plain C and, for C++, as
 * classes.
 *
 * A string adapter is how strings cross a module boundary: the receiving side makes an adapter, the
 * sending side feeds it, and no memory changes hands. A C++ caller wraps an adapter object whose target
 * is a standard string; a caller in C, C#, Python or Delphi makes one of a function and a pointer:
 *
 *     static void print(void* user, const wchar_t* text) { ... }
 *     vo_string_adp* adapter = vo_string_adp_create_callback(print, NULL);
 *     vo_table_reader_field_list(reader, adapter);      // one call of print per field name
 *     vo_string_adp_destroy(adapter);
 *
 * Text: wide strings end at their NUL. Narrow strings are in the system's ANSI code page.
 * Handles: every function accepts a null handle and then does nothing (answers 0 or null).
 * Threads: one handle belongs to one thread at a time. Nothing here throws but allocation failure. */
#ifndef VOK_PLATFORM_VOK_BASIC_H
#define VOK_PLATFORM_VOK_BASIC_H

#include <stddef.h>
#include <wchar.h>

#include "platform/vok_export.h"

#ifdef __cplusplus
#include <string>

/* The receiving end of a string adapter. The two operations are the first two entries of its virtual
 * table, in this order; other compilers rely on that, so nothing virtual may be added before them. */
class VOK_API Tvo_string_adapter_base {
 public:
  /* Takes a wide string, NUL-terminated; null empties the target. */
  virtual void receive(const wchar_t* text) = 0;
  /* Takes a narrow string in the system's code page, NUL-terminated; null empties the target. */
  virtual void receive_narrow(const char* text) = 0;

 protected:
  /* Adapters are made, copied and destroyed as what they are. */
  Tvo_string_adapter_base() = default;
  /* Copies nothing: the base holds nothing. */
  Tvo_string_adapter_base(const Tvo_string_adapter_base&) = default;
  /* Copies nothing: the base holds nothing. */
  Tvo_string_adapter_base& operator=(const Tvo_string_adapter_base&) = default;
  ~Tvo_string_adapter_base() = default;
};

/* Puts what it receives into a wide string of the caller; each string replaces the one before. */
class VOK_API Tvo_std_wstring_adapter final : public Tvo_string_adapter_base {
 public:
  /* The target must live as long as the adapter. */
  explicit Tvo_std_wstring_adapter(std::wstring& target);
  void receive(const wchar_t* text) override;
  void receive_narrow(const char* text) override;

 private:
  std::wstring* target_;
};

/* Puts what it receives into a narrow string of the caller, in the system's code page. */
class VOK_API Tvo_std_string_adapter final : public Tvo_string_adapter_base {
 public:
  /* The target must live as long as the adapter. */
  explicit Tvo_std_string_adapter(std::string& target);
  void receive(const wchar_t* text) override;
  void receive_narrow(const char* text) override;

 private:
  std::string* target_;
};
#else
typedef struct Tvo_string_adapter_base Tvo_string_adapter_base;
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- string adapters ---- */

/* A handle on an adapter. */
typedef struct vo_string_adp vo_string_adp;

/* Receives one wide string; the text is valid during the call only and never null (a null that was fed
 * arrives as the empty string). */
typedef void (*vo_string_adp_receiver)(void* user, const wchar_t* text);

/* Wraps an adapter object. The object stays the caller's and must outlive the handle.
 * Returns null for a null object. */
VOK_API vo_string_adp* vo_string_adp_create(Tvo_string_adapter_base* receiver);

/* Makes an adapter that calls `receiver` with `user` once for every string it is fed, in order. Narrow
 * text arrives decoded. Returns null for a null function. */
VOK_API vo_string_adp* vo_string_adp_create_callback(vo_string_adp_receiver receiver, void* user);

/* Hands one wide string to the adapter; null empties the adapter's target. */
VOK_API void vo_string_adp_feed(vo_string_adp* adapter, const wchar_t* text);

/* Hands one narrow string to the adapter; null empties the adapter's target. */
VOK_API void vo_string_adp_feed_narrow(vo_string_adp* adapter, const char* text);

/* Frees the handle, not the object that it wraps. */
VOK_API void vo_string_adp_destroy(vo_string_adp* adapter);

/* ---- lists of narrow strings ---- */

/* A list of narrow strings, which it owns. */
typedef struct vo_strings vo_strings;

/* An empty list, to be freed with vo_strings_destroy. */
VOK_API vo_strings* vo_strings_create(void);

/* Appends a copy of a narrow string; null is appended as the empty string. */
VOK_API void vo_strings_add(vo_strings* list, const char* text);

/* Number of strings. */
VOK_API size_t vo_strings_get_size(const vo_strings* list);

/* The string at an index; null when there is none. It lives until the list is changed or freed. */
VOK_API const char* vo_strings_get_str(const vo_strings* list, size_t index);

/* Frees the list and its strings. */
VOK_API void vo_strings_destroy(vo_strings* list);

/* ---- text as ASCII ---- */

/* Hands the transliteration of a wide text to the receiver, as narrow text of ASCII alone: letters of the
 * Russian, Ukrainian, Belarusian and Kazakh alphabets as Latin letters ("Zh" for a capital that becomes
 * several), Latin letters with marks without them, everything else that is not ASCII as "_". Case is
 * kept; hard and soft signs vanish. A null text is handed over as the empty string. */
VOK_API void vo_translit(const wchar_t* text, vo_string_adp* receiver);

/* ---- suite paths ---- */

/* Full path of the suite's main module: what vo_options_set_main_module_path set, else the running
 * executable. Programs that belong to the suite (the spreadsheet converter) stand beside it.
 * The text lives until the next call of this function in the same thread. */
VOK_API const wchar_t* vo_options_get_main_module_path(void);

/* Tells where the main module is, for a host that is an interpreter and has the suite's programs
 * elsewhere. Null or empty: the running executable again. Any thread may call it. */
VOK_API void vo_options_set_main_module_path(const wchar_t* path);

/* The folder for temporary files, with a trailing separator: what vo_options_set_temp_wpath set, else the system's.
 * The text lives until the next call of this function in the same thread. */
VOK_API const wchar_t* vo_options_get_temp_wpath(void);

/* Chooses the folder for temporary files, which must exist; a trailing separator is added when there is none. Null or
 * empty: the system's again. Any thread may call it.
 * While a workbook is read, its text lies there under the workbook's name. So two workbooks of one name must not be read
 * at the same time in one folder, whatever programs read them, and a file of that name which was there is lost. A host
 * that chooses a folder of its own is safe from other programs and from its user's files. */
VOK_API void vo_options_set_temp_wpath(const wchar_t* path);

/* ---- the system's code page ---- */

/* Chooses the code page that stands for the system's own ("SYSTEM", "ANSI") everywhere in the library from
 * now on, for a host whose files come from another system: 866 reads the DBF files of DOS. 0 gives the
 * choice back to the system; a number that is no supported page leaves everything as it is.
 * Returns 1 when the page was taken, else 0. Call it before readers and writers are opened; what is open
 * may go on with the page before. Any thread may call it. */
VOK_API int vo_options_set_system_code_page(unsigned code_page);

#ifdef __cplusplus
}
#endif

#endif
