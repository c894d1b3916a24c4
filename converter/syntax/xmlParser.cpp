#include "converter/syntax/xmlParser.h"

#include <expat.h>

#include <exception>
#include <memory>
#include <new>

namespace converter {
namespace {

constexpr int feedSize = 128 * 1024;
constexpr unsigned deepestNesting = 256;
constexpr std::size_t mostBytesWithoutEvent = std::size_t{16} << 20;

struct parserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using parserPointer = std::unique_ptr<XML_ParserStruct, parserDeleter>;

// What the handlers share. No exception may pass through expat, so one is kept and thrown again behind it.
struct parsing {
  XML_Parser parser;
  xmlEvents* events;
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
  if (isText(local, "Choice")) {
    state.skippedAt = state.depth;
    return;
  }
  state.guarded([&] { state.events->startElement(local, xmlAttributes(attributes)); });
}

void XMLCALL endElement(void* user, const XML_Char* name) {
  auto& state = *static_cast<parsing*>(user);
  state.hadEvent = true;
  const unsigned depth = state.depth--;
  if (state.skippedAt != 0) {
    if (state.skippedAt == depth) state.skippedAt = 0;
    return;
  }
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

// A document type may name entities that stand elsewhere; nothing outside the package is ever read.
void XMLCALL skippedEntity(void* user, const XML_Char*, int) {
  auto& state = *static_cast<parsing*>(user);
  state.refusal = "it refers to an entity outside the package";
  state.stop();
}

std::string reasonOf(const parsing& state) {
  if (state.refusal != nullptr) return std::string("an XML part is refused: ") + state.refusal;
  return std::string("an XML part is damaged: ") + XML_ErrorString(XML_GetErrorCode(state.parser)) +
         " in line " + std::to_string(XML_GetCurrentLineNumber(state.parser));
}

}  // namespace

bool parseXml(const zipArchive& archive, const zipMember& member, xmlEvents& events,
              std::string& problem) {
  zipMemberReader reader;
  if (!reader.open(archive, member, problem)) return false;
  const parserPointer parser(XML_ParserCreate(nullptr));
  if (parser == nullptr) throw std::bad_alloc();
  parsing state{parser.get(), &events};
  XML_SetUserData(parser.get(), &state);
  XML_SetElementHandler(parser.get(), startElement, endElement);
  XML_SetCharacterDataHandler(parser.get(), characters);
  XML_SetEntityDeclHandler(parser.get(), entityDeclaration);
  XML_SetSkippedEntityHandler(parser.get(), skippedEntity);
  std::size_t withoutEvent = 0;
  for (bool isLast = false; !isLast;) {
    void* const buffer = XML_GetBuffer(parser.get(), feedSize);
    if (buffer == nullptr) throw std::bad_alloc();
    const std::ptrdiff_t size = reader.read(buffer, feedSize, problem);
    if (size < 0) return false;
    isLast = size == 0;
    state.hadEvent = false;
    const XML_Status status = XML_ParseBuffer(parser.get(), static_cast<int>(size), isLast);
    if (state.thrown != nullptr) std::rethrow_exception(state.thrown);
    if (status != XML_STATUS_OK) {
      if (XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
      problem = reasonOf(state);
      return false;
    }
    withoutEvent = state.hadEvent ? 0 : withoutEvent + static_cast<std::size_t>(size);
    if (withoutEvent > mostBytesWithoutEvent) {
      problem = "an XML part is refused: a single item of it is longer than 16 MiB";
      return false;
    }
    problem = events.stopReason();
    if (!problem.empty()) return false;
  }
  return true;
}

}  // namespace converter
