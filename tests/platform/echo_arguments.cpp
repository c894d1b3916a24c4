// A child process for process_contract_test: writes its arguments, one UTF-8 line each, into the
// file that the variable VOK_ECHO_FILE names, and ends as an argument tells it: --exit=N with that
// code, --abort by abort(). Prints nothing.
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace {

constexpr int cannotWrite = 99;

std::string utf8(const std::wstring& text) {
  std::string bytes(4 * text.size(), '\0');
  const int length =
      platform::encodeCodePage(platform::utf8CodePage, text.data(), static_cast<int>(text.size()),
                               bytes.data(), static_cast<int>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

}  // namespace

int main(int count, char** values) {
  const std::wstring exitSwitch = L"--exit=";
  int exitCode = 0;
  std::string lines;
  for (const std::wstring& argument : platform::commandLineArguments(count, values)) {
    lines += utf8(argument) + "\n";
    if (argument == L"--abort") std::abort();
    if (argument.rfind(exitSwitch, 0) == 0)
      exitCode = std::stoi(argument.substr(exitSwitch.size()));
  }
  if (const auto path = platform::environmentVariable(L"VOK_ECHO_FILE")) {
    platform::binaryFile file;
    if (!file.openForWriting(*path) || !file.write(lines.data(), lines.size()) || !file.close())
      return cannotWrite;
  }
  return exitCode;
}
