// vok_table: shows tables of many formats, searches them, says what is wrong with them, converts
// them.
//
// main takes the command line apart, calls the command, and hands out what was written. Data go to
// standard output, messages to standard error, or both into one JSON document on standard output;
// exitCodes.h tells what the answers mean.
#include <fmt/core.h>

#include <csignal>
#include <exception>
#include <new>

#include "platform/console.h"
#include "tools/commandLine.h"
#include "tools/commandTable.h"
#include "tools/text.h"

namespace vokTable {
namespace {

/// Answers --help and a line that cannot be followed.
exitCode answerWithoutCommand(const parsedCommandLine& parsed, toolContext& context) {
  if (parsed.problem.empty()) {
    context.output.text(toWide(parsed.help));
    return exitCode::clean;
  }
  context.messages.error(parsed.problem);
  context.messages.hint(fmt::format("vok_table {}{}--help tells how it is used", parsed.command,
                                    parsed.command.empty() ? "" : " "));
  return exitCode::usage;
}

exitCode runCommand(const commandLine& request, toolContext& context) {
  if (const auto problem = applySystemEncoding(request.reading)) {
    context.messages.error(*problem);
    return exitCode::usage;
  }
  if (request.json && request.csv) {
    context.messages.error("--json and --csv are two forms of the answer: leave one of them out");
    return exitCode::usage;
  }
  return commandNamed(request.command).run(request, context);
}

answerForm formOf(const parsedCommandLine& parsed, const std::vector<std::wstring>& arguments) {
  if (parsed.request ? parsed.request->json : asksForJson(arguments) && parsed.help.empty())
    return answerForm::json;
  return parsed.request && parsed.request->csv ? answerForm::csv : answerForm::text;
}

exitCode runTool(const std::vector<std::wstring>& arguments) {
  const parsedCommandLine parsed = parseCommandLine(arguments);
  toolContext context(formOf(parsed, arguments));
  std::vector<keptMessage> kept;
  if (context.answer.isJson()) context.messages.keepIn(kept);
  context.answer.begin(parsed.command,
                       parsed.request ? parsed.request->reading.file : std::string());
  const exitCode outcome =
      parsed.request ? runCommand(*parsed.request, context) : answerWithoutCommand(parsed, context);
  context.answer.conclude(kept, outcome);
  // An output that takes nothing more cannot tell of it: a document neither.
  return context.output.finish(messageWriter::forStandardError(), outcome);
}

/// The last resort, for which there may be no memory.
exitCode giveUp(std::string_view message) {
  for (const std::string_view part :
       {std::string_view("vok_table: error: "), message, std::string_view("\n")})
    platform::writeLastWord(platform::standardStream::error, part);
  return exitCode::cannotOpen;
}

exitCode runGuarded(int count, char** values) {
  try {
    return runTool(platform::commandLineArguments(count, values));
  } catch (const std::bad_alloc&) {
    return giveUp("not enough memory for this table");
  } catch (const std::exception& failure) {
    return giveUp(failure.what());
  }
}

}  // namespace
}  // namespace vokTable

int main(int count, char** values) {
#ifdef SIGPIPE
  // A reader that goes away ends the output, not the program: a conversion has a file to clean up.
  std::signal(SIGPIPE, SIG_IGN);
#endif
  return static_cast<int>(vokTable::runGuarded(count, values));
}
