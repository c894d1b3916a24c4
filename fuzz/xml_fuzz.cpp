// Sheets and lists of shared strings read with the shortcut past the XML parser and by the parser alone, in
// pieces of any size: the outcome is the same.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "tests/reference/xmlTwin.h"

// The first byte chooses the kind of document, the next three the sizes of its pieces.
std::string fuzzing::xml(std::string_view bytes) {
  inputReader input(bytes);
  const bool isSheet = input.below(2) == 0;
  std::vector<std::size_t> sizes;
  for (int i = 0; i < 3; ++i) sizes.push_back(1 + 4 * input.below(256));
  const std::string document(input.rest());
  const auto read = isSheet ? reference::readSheetXml : reference::readStringsXml;
  const reference::xmlOutcome whole = read(document, sizes, false);
  const reference::xmlOutcome quick = read(document, sizes, true);
  const std::string difference = reference::difference(whole, quick);
  demand(difference.empty(), difference);
  const reference::xmlOutcome atOnce = read(document, {document.size() + 1}, true);
  demand(atOnce.isRead == quick.isRead, "it matters where the document is cut");
  demand(!atOnce.isRead || atOnce.found == quick.found, "the outcome depends on the cuts");
  return quick.isRead ? "read" : "refused";
}
