// The vocabulary of text encodings that every reader and writer uses: a constant table of nineteen
// rows. An encoding is its index in the table, which is also what a reader's options hold.
//
// The rows are found by index only; names and aliases are for people and for tools. Nothing here or in
// the library guesses an encoding or looks for a byte-order mark.
//
// This header stands alone (no code behind it), so hosts and tools may use it to offer a choice.
#ifndef VOK_TABLE_RW_TEXT_TEXTENCODING_H
#define VOK_TABLE_RW_TEXT_TEXTENCODING_H

#include <cstddef>
#include <cstdint>

namespace tableRW {

/// Index into the table of encodings, 0 to 18.
using textEncoding = std::int32_t;

/// One row of the table: an encoding that options can name.
struct textEncodingRow {
  const char* name;   ///< the name that is shown
  const char* alias;  ///< another name for it
  unsigned codePage;  ///< Windows code page number; 0 is the system's ANSI code page
};

/// ODD: the aliases of rows 5 and 6 are crossed, and hosts have stored them that way.
/// ODD: UTF-16 and UTF-32 carry code page 0: they are accepted everywhere and treated as text in the
/// system's code page. Hosts that offer the whole list rely on no row being refused.
inline constexpr textEncodingRow textEncodings[] = {
    {"UTF-8",    "UTF-8",        65001},
    {"UTF-16",   "UTF-16",       0    },
    {"UTF-16LE", "UTF-16LE",     0    },
    {"UTF-16BE", "UTF-16BE",     0    },
    {"UTF-32",   "UTF-32",       0    },
    {"UTF-32LE", "UTF-32BE",     0    },
    {"UTF-32BE", "UTF-32LE",     0    },
    {"CP1250",   "Windows-1250", 1250 },
    {"CP1251",   "Windows-1251", 1251 },
    {"CP1252",   "Windows-1252", 1252 },
    {"CP1253",   "Windows-1253", 1253 },
    {"CP1254",   "Windows-1254", 1254 },
    {"CP1255",   "Windows-1255", 1255 },
    {"CP1256",   "Windows-1256", 1256 },
    {"CP1257",   "Windows-1257", 1257 },
    {"CP1258",   "Windows-1258", 1258 },
    {"CP866",    "OEM 866",      866  },
    {"ASCII",    "US-ASCII",     20127},
    {"SYSTEM",   "ANSI",         0    },
};

/// Number of encodings.
inline constexpr std::size_t textEncodingCount = sizeof(textEncodings) / sizeof(textEncodings[0]);

inline constexpr textEncoding encodingUtf8 = 0;     ///< the default
inline constexpr textEncoding encodingCp1251 = 8;   ///< Windows' Cyrillic code page
inline constexpr textEncoding encodingSystem = 18;  ///< the system's ANSI code page

/// The Windows code page of an encoding. A value outside the table is a host's mistake and is treated
/// as SYSTEM.
constexpr unsigned codePageOf(textEncoding encoding) {
  return encoding < 0 || static_cast<std::size_t>(encoding) >= textEncodingCount
             ? 0
             : textEncodings[encoding].codePage;
}

}  // namespace tableRW

#endif
