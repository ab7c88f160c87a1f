#include "host/printing/program.h"

#include "base/windows.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/printing/exit_code.h"

namespace quillo::host {

std::vector<std::string> ArgumentsOf(int count, wchar_t** arguments) {
  std::vector<std::string> texts;
  for (int i = 1; i < count; ++i) texts.push_back(ToUtf8(arguments[i]));
  return texts;
}

int RunProgram(CLI::App& app, std::vector<std::string> arguments, Console& console,
               const std::function<int()>& run) {
  try {
    std::ranges::reverse(arguments);
    app.parse(std::move(arguments));
    return run();
  } catch (const CLI::CallForHelp&) {
    console.Write(app.help());
    return kPrinted;
  } catch (const CLI::CallForVersion& version) {
    console.Write(std::string(version.what()) + "\n");
    return kPrinted;
  } catch (const CLI::ParseError& wrong) {
    console.Problem(std::string(wrong.what()) + "\nTry --help.");
    return kWrongUsage;
  } catch (const ResultFailure& failure) {
    console.Problem(failure.what());
    return kResultsLost;
  } catch (const std::exception& failure) {
    console.Problem(failure.what());
    return kDriverFailed;
  }
}

}  // namespace quillo::host
