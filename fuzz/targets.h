// The list of fuzz targets: one function each, in a file of its name. See fuzzing.h for what a target is.
#ifndef VOK_FUZZ_TARGETS_H
#define VOK_FUZZ_TARGETS_H

#include <string>
#include <string_view>

namespace fuzzing {

std::string capi(std::string_view bytes);       ///< a sequence of calls of the C interface
std::string compound(std::string_view bytes);   ///< compound files
std::string csv(std::string_view bytes);        ///< the CSV reader
std::string dbf(std::string_view bytes);        ///< the DBF reader, with memo files
std::string micromine(std::string_view bytes);  ///< the Micromine reader
std::string names(std::string_view bytes);      ///< transliteration and DBF field names
std::string petrel(std::string_view bytes);     ///< the Petrel reader
std::string sqlite(std::string_view bytes);     ///< the SQLite reader
std::string text(std::string_view bytes);       ///< code pages, lines, splitting
std::string writers(std::string_view bytes);    ///< the writers, and what is read back
std::string xls(std::string_view bytes);        ///< .xls workbooks
std::string xlsx(std::string_view bytes);       ///< .xlsx workbooks
std::string xml(std::string_view bytes);        ///< the XML parser with and without its shortcut
std::string zip(std::string_view bytes);        ///< ZIP archives

struct target {
  const char* name;
  std::string (*run)(std::string_view bytes);
};

inline constexpr target targets[] = {
    {"capi",      capi     },
    {"compound",  compound },
    {"csv",       csv      },
    {"dbf",       dbf      },
    {"micromine", micromine},
    {"names",     names    },
    {"petrel",    petrel   },
    {"sqlite",    sqlite   },
    {"text",      text     },
    {"writers",   writers  },
    {"xls",       xls      },
    {"xlsx",      xlsx     },
    {"xml",       xml      },
    {"zip",       zip      },
};

/// Null when there is none of this name.
inline const target* findTarget(std::string_view name) {
  for (const target& each : targets)
    if (each.name == name) return &each;
  return nullptr;
}

}  // namespace fuzzing

#endif
