// vok_table: shows tables of many formats, searches them, says what is wrong with them, converts
// them.
//
// main takes the command line apart, calls the command, and hands out what was written. Data go to
// standard output, messages to standard error; exitCodes.h tells what the answers mean.
#include <algorithm>
#include <csignal>
#include <exception>
#include <new>

#include "platform/console.h"
#include "tools/commandLine.h"
#include "tools/commands.h"
#include "tools/formats.h"
#include "tools/output.h"
#include "tools/text.h"
#include "tools/version.h"

namespace vokTable {
namespace {

exitCode showVersion(const commandLine&, toolContext& context) {
  context.output.line(toWide(versionText));
  return exitCode::clean;
}

exitCode listFormats(const commandLine&, toolContext& context) {
  showFormats(context.output);
  return exitCode::clean;
}

constexpr struct {
  std::string_view name;
  exitCode (*run)(const commandLine& request, toolContext& context);
} commands[] = {
    {"tables",  listTables       },
    {"fields",  listFields       },
    {"head",    showFirstRows    },
    {"cat",     showAllRows      },
    {"count",   countRows        },
    {"errors",  listRejectedLines},
    {"find",    findValues       },
    {"convert", convertTable     },
    {"doctor",  examineMachine   },
    {"formats", listFormats      },
    {"version", showVersion      },
};

exitCode runTool(const std::vector<std::wstring>& arguments) {
  toolContext context{messageWriter::forStandardError(), dataOutput::forStandardOutput()};
  const parsedCommandLine parsed = parseCommandLine(arguments);
  if (!parsed.request) {
    if (!parsed.problem.empty()) {
      context.messages.error(parsed.problem);
      context.messages.hint("vok_table --help tells how it is used");
      return exitCode::usage;
    }
    context.output.text(toWide(parsed.help));
    return context.output.finish(context.messages, exitCode::clean);
  }
  if (const auto problem = applySystemEncoding(parsed.request->reading)) {
    context.messages.error(*problem);
    return exitCode::usage;
  }
  const auto* const command =
      std::find_if(std::begin(commands), std::end(commands),
                   [&](const auto& each) { return each.name == parsed.request->command; });
  return context.output.finish(context.messages, command->run(*parsed.request, context));
}

/// The last resort, for which there may be no memory.
exitCode giveUp(std::wstring_view message) {
  platform::writeText(platform::standardStream::error, message);
  platform::flushText(platform::standardStream::error);
  return exitCode::cannotOpen;
}

exitCode runGuarded(int count, char** values) {
  try {
    return runTool(platform::commandLineArguments(count, values));
  } catch (const std::bad_alloc&) {
    return giveUp(L"vok_table: error: not enough memory for this table\n");
  } catch (const std::exception& failure) {
    return giveUp(L"vok_table: error: " + toWide(failure.what()) + L"\n");
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
