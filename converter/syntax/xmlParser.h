// XML parts as events: expat, fed with large pieces of a ZIP member.
//
// Elements and attributes are known by their local names: workbooks use any prefix, and the transitional and
// the strict namespaces mean the same. The content of `Choice` elements (mc:AlternateContent) is left out,
// what stands beside it as the fallback is read. Left out too is what programs keep for themselves, under any
// names: in `extLst`, and in elements of another namespace than the root's.
//
// What repeats may be taken from the bytes themselves (`xmlShortcut`), where it stands as plainly as programs
// write it; everything else, and every doubt, goes through expat.
//
// Refused, with a message: what is not well-formed, declarations of entities (no workbook has any, and they
// can make gigabytes of a line), elements nested more than 256 deep, and 16 MiB in which nothing begins or
// ends. UTF-8, UTF-16, Latin-1 and ASCII are read, as the part declares.
#ifndef VOK_CONVERTER_SYNTAX_XMLPARSER_H
#define VOK_CONVERTER_SYNTAX_XMLPARSER_H

#include <cstddef>
#include <string>
#include <string_view>

#include "converter/container/zipArchive.h"

namespace converter {

/// The part of an XML name behind its prefix.
inline const char* localName(const char* name) {
  const char* local = name;
  for (; *name != '\0'; ++name)
    if (*name == ':') local = name + 1;
  return local;
}

/// Whether a text that ends at its NUL is this one. WHY not a comparison of string views: names have one or
/// two letters, there are twelve million of them in a sheet, and nobody needs their lengths.
template <std::size_t Size>
constexpr bool isText(const char* text, const char (&expected)[Size]) {
  for (std::size_t i = 0; i < Size; ++i)
    if (text[i] != expected[i]) return false;
  return true;
}

/// The attributes of one element; valid during the event only.
class xmlAttributes {
 public:
  explicit xmlAttributes(const char** pairs) : pairs_(pairs) {}

  /// Calls `receive(local name, value)` for each.
  template <class Receive>
  void forEach(Receive receive) const {
    for (const char** pair = pairs_; *pair != nullptr; pair += 2)
      receive(localName(pair[0]), pair[1]);
  }

  /// The value of the attribute with this local name; null when there is none.
  template <std::size_t Size>
  const char* find(const char (&name)[Size]) const {
    for (const char** pair = pairs_; *pair != nullptr; pair += 2)
      if (isText(localName(pair[0]), name)) return pair[1];
    return nullptr;
  }

 private:
  const char** pairs_;
};

/// Takes elements of one kind straight from the bytes of a part, past the parser: the rows of a sheet are
/// nearly all of it, and most are of the plainest form.
class xmlShortcut {
 public:
  /// @param container  element whose children may be taken, without a prefix
  /// @param itemEnd    end tag of those children, `</row>`; both live as long as this
  xmlShortcut(const char* container, std::string_view itemEnd)
      : container_(container), itemEnd_(itemEnd) {}
  xmlShortcut(const xmlShortcut&) = delete;
  xmlShortcut& operator=(const xmlShortcut&) = delete;
  virtual ~xmlShortcut() = default;

  const char* container() const { return container_; }
  std::string_view itemEnd() const { return itemEnd_; }

  /// Takes whole children, and blanks before them, and does what their events would have done.
  /// @param bytes  UTF-8, directly behind the container's start tag or a child, with a NUL behind them
  /// @param lines  line feeds in what was taken are added to it
  /// @return how many bytes were taken: up to the first child that is not whole or not understood, which the
  ///         parser gets
  virtual std::size_t take(std::string_view bytes, std::size_t& lines) = 0;

 private:
  const char* container_;
  std::string_view itemEnd_;
};

/// Receives the events of one part. Names are local names.
class xmlEvents {
 public:
  xmlEvents() = default;
  xmlEvents(const xmlEvents&) = delete;
  xmlEvents& operator=(const xmlEvents&) = delete;
  virtual ~xmlEvents() = default;

  virtual void startElement(const char* name, const xmlAttributes& attributes) = 0;
  virtual void endElement(const char* name) = 0;
  /// A piece of text in UTF-8; one text may come in several pieces.
  virtual void text(std::string_view piece) = 0;
  /// A reason to stop, asked for between pieces of the file; empty: go on.
  virtual std::string stopReason() { return {}; }
  /// Null: the parser reads everything. Otherwise it lives as long as this.
  virtual xmlShortcut* shortcut() { return nullptr; }
};

/// Where a part's bytes come from.
class xmlSource {
 public:
  xmlSource() = default;
  xmlSource(const xmlSource&) = delete;
  xmlSource& operator=(const xmlSource&) = delete;
  virtual ~xmlSource() = default;

  /// @return the number of bytes read, 0 at the end; negative after a failure, whose reason is in `problem`
  virtual std::ptrdiff_t read(void* buffer, std::size_t size, std::string& problem) = 0;
};

/// Parses one document.
/// @param problem  receives the reason when the answer is false
bool parseXml(xmlSource& source, xmlEvents& events, std::string& problem);

/// Parses one part of a package.
bool parseXml(const zipArchive& archive, const zipMember& member, xmlEvents& events,
              std::string& problem);

}  // namespace converter

#endif
