#include "converter/syntax/xmlParser.h"

#include <expat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <vector>

namespace converter {
namespace {

constexpr std::size_t blockSize = std::size_t{128} * 1024;
constexpr std::size_t mostKept = blockSize;  // of a child that a block ends in
constexpr unsigned deepestNesting = 256;
constexpr std::size_t mostBytesWithoutEvent = std::size_t{16} << 20;

struct parserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using parserPointer = std::unique_ptr<XML_ParserStruct, parserDeleter>;

// When a shortcut may be used: directly inside its container, in a document that is UTF-8 and has no type,
// which could give elements attributes that stand nowhere.
class shortcutPlace {
 public:
  explicit shortcutPlace(xmlShortcut* shortcut) : shortcut_(shortcut) {}

  void refuse() { shortcut_ = nullptr; }
  void startElement(XML_Parser parser, const char* name, unsigned depth) {
    if (shortcut_ == nullptr || container_ != 0 || std::strcmp(name, shortcut_->container()) != 0)
      return;
    container_ = depth;
    remember(parser);
  }
  void endElement(XML_Parser parser, unsigned depth) {
    if (container_ == 0) return;
    if (depth == container_ + 1) remember(parser);
    if (depth == container_) container_ = 0;
  }

  /// Whether the parser may now meet children of the container.
  bool isInside() const { return shortcut_ != nullptr && container_ != 0; }
  /// Whether the bytes that were fed end exactly behind the container's start or one of its children.
  bool isOffered(std::uint64_t fed, unsigned depth) const {
    return isInside() && depth == container_ && behindTag_ == static_cast<std::uint32_t>(fed);
  }

 private:
  // 32 bits, as the parser's own number may have no more; blocks are smaller by far.
  void remember(XML_Parser parser) {
    behindTag_ = static_cast<std::uint32_t>(XML_GetCurrentByteIndex(parser)) +
                 static_cast<std::uint32_t>(XML_GetCurrentByteCount(parser));
  }

  xmlShortcut* shortcut_;
  unsigned container_ = 0;  // its depth; 0: outside
  std::uint32_t behindTag_ = 0;
};

// Which elements are of another namespace than the document's root. A namespace that is not declared, or is
// none, counts as the root's.
// WHY not the parser's own handling of namespaces: it would make longer names of millions of elements.
class namespaces {
 public:
  /// @return whether the element is of another namespace
  bool startElement(const char* name, const XML_Char** attributes, unsigned depth) {
    const auto length = static_cast<std::size_t>(localName(name) - name);
    const std::string_view prefix(name, length == 0 ? 0 : length - 1);
    if (depth == 1) setOwn(prefix, attributes);
    if (own_.empty()) return false;
    forEachDeclaration(attributes, [&](std::string_view declared, std::string_view identifier) {
      if (declared_.size() < mostDeclared)
        declared_.push_back(
            {std::string(declared), depth, !identifier.empty() && identifier != own_});
    });
    const auto found = std::find_if(declared_.rbegin(), declared_.rend(),
                                    [&](const entry& each) { return each.prefix == prefix; });
    return found != declared_.rend() && found->isForeign;
  }
  void endElement(unsigned depth) {
    while (!declared_.empty() && declared_.back().depth == depth) declared_.pop_back();
  }

 private:
  // Far more than programs declare. WHY any: each element is looked up among them.
  static constexpr std::size_t mostDeclared = 64;

  struct entry {
    std::string prefix;
    unsigned depth;
    bool isForeign;
  };

  template <class Receive>
  static void forEachDeclaration(const XML_Char** attributes, Receive receive) {
    constexpr std::string_view declaration = "xmlns";
    for (; *attributes != nullptr; attributes += 2) {
      std::string_view name(attributes[0]);
      if (!name.starts_with(declaration)) continue;
      name.remove_prefix(declaration.size());
      if (name.empty())
        receive(name, attributes[1]);
      else if (name[0] == ':')
        receive(name.substr(1), attributes[1]);
    }
  }
  void setOwn(std::string_view prefix, const XML_Char** attributes) {
    forEachDeclaration(attributes, [&](std::string_view declared, std::string_view identifier) {
      if (declared == prefix) own_ = identifier;
    });
  }

  std::string own_;
  std::vector<entry> declared_;
};

// What the handlers share. No exception may pass through expat, so one is kept and thrown again behind it.
struct parsing {
  XML_Parser parser;
  xmlEvents* events;
  shortcutPlace place;
  namespaces names = {};
  unsigned depth = 0;
  unsigned skippedAt = 0;  // depth of the element whose content is left out; 0: none
  bool hadEvent = false;
  const char* refusal = nullptr;
  std::exception_ptr thrown = nullptr;

  void stop() { XML_StopParser(parser, XML_FALSE); }

  template <class Call>
  void guarded(Call call) {
    try {
      call();
    } catch (...) {
      thrown = std::current_exception();
      stop();
    }
  }
};

void XMLCALL startElement(void* user, const XML_Char* name, const XML_Char** attributes) {
  auto& state = *static_cast<parsing*>(user);
  state.hadEvent = true;
  if (++state.depth > deepestNesting) {
    state.refusal = "elements are nested too deeply";
    state.stop();
    return;
  }
  if (state.skippedAt != 0) return;
  const char* const local = localName(name);
  bool isForeign = false;
  state.guarded([&] { isForeign = state.names.startElement(name, attributes, state.depth); });
  const bool isAround = isText(local, "AlternateContent") || isText(local, "Fallback");
  if (isText(local, "Choice") || isText(local, "extLst") || (isForeign && !isAround)) {
    state.skippedAt = state.depth;
    return;
  }
  state.place.startElement(state.parser, name, state.depth);
  state.guarded([&] { state.events->startElement(local, xmlAttributes(attributes)); });
}

void XMLCALL endElement(void* user, const XML_Char* name) {
  auto& state = *static_cast<parsing*>(user);
  state.hadEvent = true;
  const unsigned depth = state.depth--;
  state.names.endElement(depth);
  if (state.skippedAt != 0) {
    if (state.skippedAt == depth) state.skippedAt = 0;
    return;
  }
  state.place.endElement(state.parser, depth);
  state.guarded([&] { state.events->endElement(localName(name)); });
}

void XMLCALL characters(void* user, const XML_Char* text, int length) {
  auto& state = *static_cast<parsing*>(user);
  state.hadEvent = true;
  if (state.skippedAt != 0) return;
  state.guarded([&] { state.events->text({text, static_cast<std::size_t>(length)}); });
}

void XMLCALL entityDeclaration(void* user, const XML_Char*, int, const XML_Char*, int,
                               const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
  auto& state = *static_cast<parsing*>(user);
  state.refusal = "it declares entities";
  state.stop();
}

void XMLCALL declaration(void* user, const XML_Char*, const XML_Char* encoding, int) {
  if (encoding == nullptr) return;
  const std::string_view name = encoding;
  if (name != "UTF-8" && name != "utf-8") static_cast<parsing*>(user)->place.refuse();
}

void XMLCALL documentType(void* user, const XML_Char*, const XML_Char*, const XML_Char*, int) {
  static_cast<parsing*>(user)->place.refuse();
}

// A document type may name entities that stand elsewhere; nothing outside the package is ever read.
void XMLCALL skippedEntity(void* user, const XML_Char*, int) {
  auto& state = *static_cast<parsing*>(user);
  state.refusal = "it refers to an entity outside the package";
  state.stop();
}

// Feeds the parser with what no shortcut takes.
class partReader {
 public:
  explicit partReader(xmlEvents& events)
      : parser_(XML_ParserCreate(nullptr)),
        shortcut_(events.shortcut()),
        state_{parser_.get(), &events, shortcutPlace(shortcut_)},
        block_(mostKept + blockSize + 1) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), &state_);
    XML_SetElementHandler(parser_.get(), startElement, endElement);
    XML_SetCharacterDataHandler(parser_.get(), characters);
    XML_SetXmlDeclHandler(parser_.get(), declaration);
    XML_SetStartDoctypeDeclHandler(parser_.get(), documentType);
    XML_SetEntityDeclHandler(parser_.get(), entityDeclaration);
    XML_SetSkippedEntityHandler(parser_.get(), skippedEntity);
  }

  bool read(xmlSource& source, std::string& problem) {
    std::size_t withoutEvent = 0;
    for (bool isLast = false; !isLast;) {
      const std::ptrdiff_t size = source.read(block_.data() + kept_, blockSize, problem);
      if (size < 0) return false;
      isLast = size == 0;
      state_.hadEvent = false;
      if (!parseBlock(kept_ + static_cast<std::size_t>(size), isLast)) {
        problem = reason();
        return false;
      }
      withoutEvent = state_.hadEvent ? 0 : withoutEvent + static_cast<std::size_t>(size);
      if (withoutEvent > mostBytesWithoutEvent) {
        problem = "an XML part is refused: a single item of it is longer than 16 MiB";
        return false;
      }
      problem = state_.events->stopReason();
      if (!problem.empty()) return false;
    }
    return true;
  }

 private:
  // What the next block has to begin with is kept.
  bool parseBlock(std::size_t size, bool isLast) {
    block_[size] = '\0';
    std::size_t at = 0;
    for (bool isDone = false; !isDone;) {
      if (state_.place.isOffered(fed_, state_.depth)) {
        const std::size_t taken = shortcut_->take({block_.data() + at, size - at}, linesTaken_);
        if (taken > 0) state_.hadEvent = true;
        at += taken;
      }
      const std::size_t end = at + sizeToFeed({block_.data() + at, size - at}, isLast);
      if (end == at && !isLast) break;
      isDone = end == size;
      // The last block is fed whole: it is what was kept, and no item ends in that.
      if (!feed({block_.data() + at, end - at}, isLast)) return false;
      at = end;
    }
    kept_ = size - at;
    std::memmove(block_.data(), block_.data() + at, kept_);
    return true;
  }

  std::size_t sizeToFeed(std::string_view bytes, bool isLast) const {
    if (!state_.place.isInside()) return bytes.size();
    const std::size_t end = bytes.find(shortcut_->itemEnd());
    if (end != std::string_view::npos) return end + shortcut_->itemEnd().size();
    const bool isKept =
        !isLast && bytes.size() <= mostKept && state_.place.isOffered(fed_, state_.depth);
    return isKept ? 0 : bytes.size();
  }

  bool feed(std::string_view bytes, bool isLast) {
    fed_ += bytes.size();
    const XML_Status status =
        XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), isLast);
    if (state_.thrown != nullptr) std::rethrow_exception(state_.thrown);
    if (status != XML_STATUS_OK && XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY)
      throw std::bad_alloc();
    return status == XML_STATUS_OK;
  }

  std::string reason() const {
    if (state_.refusal != nullptr) return std::string("an XML part is refused: ") + state_.refusal;
    return std::string("an XML part is damaged: ") +
           XML_ErrorString(XML_GetErrorCode(parser_.get())) + " in line " +
           std::to_string(XML_GetCurrentLineNumber(parser_.get()) + linesTaken_);
  }

  parserPointer parser_;
  xmlShortcut* shortcut_;
  parsing state_;
  std::vector<char> block_;
  std::size_t kept_ = 0;  // bytes of the block before
  std::uint64_t fed_ = 0;
  std::size_t linesTaken_ = 0;
};

class memberSource final : public xmlSource {
 public:
  bool open(const zipArchive& archive, const zipMember& member, std::string& problem) {
    return reader_.open(archive, member, problem);
  }
  std::ptrdiff_t read(void* buffer, std::size_t size, std::string& problem) override {
    return reader_.read(buffer, size, problem);
  }

 private:
  zipMemberReader reader_;
};

}  // namespace

bool parseXml(xmlSource& source, xmlEvents& events, std::string& problem) {
  return partReader(events).read(source, problem);
}

bool parseXml(const zipArchive& archive, const zipMember& member, xmlEvents& events,
              std::string& problem) {
  memberSource source;
  return source.open(archive, member, problem) && parseXml(source, events, problem);
}

}  // namespace converter
