// A converter for the tests of the spreadsheet reader. It records its arguments, one UTF-8 line each, in the
// file that VOK_FAKE_LOG names, and writes the text VOK_FAKE_TEXT into the file that VOK_FAKE_TARGET names,
// and an empty one for VOK_FAKE_LEFTOVER, where these are set. Ends with code 1, which nobody asks for.
#include <string>

#include "converter/wideText.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace {

void writeTo(const wchar_t* variable, const std::string& bytes) {
  const auto path = platform::environmentVariable(variable);
  platform::binaryFile file;
  if (path && file.openForWriting(*path)) file.write(bytes.data(), bytes.size());
}

}  // namespace

int main(int count, char** values) {
  std::string lines;
  for (const std::wstring& argument : platform::commandLineArguments(count, values))
    lines += converter::toUtf8(argument) + "\n";
  writeTo(L"VOK_FAKE_LOG", lines);
  writeTo(L"VOK_FAKE_TARGET",
          converter::toUtf8(platform::environmentVariable(L"VOK_FAKE_TEXT").value_or(L"")));
  writeTo(L"VOK_FAKE_LEFTOVER", "");
  return 1;
}
