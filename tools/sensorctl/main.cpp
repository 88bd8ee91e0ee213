// sensorctl: a host of the library on the command line.

#include "Commands.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Output.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <memory>

namespace {

using namespace sensorctl;

/// Everything that the command line can say.
struct CommandLine {
    bool json = false;
    int verbosity = 0;
    TargetOptions target;
    std::vector<std::string> words;
    bool catalogueOnly = false;
    bool flush = false;
    bool toLast = false;
    std::function<int(Output&)> action;
};

constexpr const char* ExitCodes = "Exit codes: 0 done, 1 usage, 2 refused or out of range, 3 no answer from the block, "
                                  "4 port or file trouble,\n130 interrupted.";

CLI::App* declare(CLI::App& app, CommandLine& line, const char* name, const char* purpose, const char* example,
                  std::function<int(Output&)> action) {
    CLI::App* const command = app.add_subcommand(name, purpose);
    command->footer(std::string("Example:\n  ") + example + "\n\n" + ExitCodes);
    command->add_flag("--json", line.json, "records as JSON, an object a line");
    command->add_flag("-v,--verbose", line.verbosity, "say more; twice: with the library's console");
    command->callback([&line, action = std::move(action)] { line.action = action; });
    return command;
}

void declareParameterCommands(CLI::App& app, CommandLine& line) {
    declare(app, line, "modules", "List the modules that the library knows", "sensorctl modules",
            [](Output& output) { return listModules(output); });

    CLI::App* command =
        declare(app, line, "list", "List a module's parameters; with a port or --simulated their values",
                "sensorctl list --module 16 --simulated",
                [&line](Output& output) { return listParameters(output, line.target, line.catalogueOnly); });
    line.target.declare(*command);
    command->add_flag("--no-bring-up", line.catalogueOnly, "from the catalogue alone, without values");

    command = declare(app, line, "get", "Show values, all of them without a name",
                      "sensorctl get --module 16 --port /dev/ttyUSB0 Brightness 9",
                      [&line](Output& output) { return getParameters(output, line.target, line.words); });
    line.target.declare(*command);
    command->add_option("parameter", line.words, "ids or names, in any case")->type_name("ID|NAME");

    command = declare(app, line, "set", "Set parameters, ascending by id",
                      "sensorctl set --module 16 --simulated --flush Brightness=60 9=2",
                      [&line](Output& output) { return setParameters(output, line.target, line.words, line.flush); });
    line.target.declare(*command);
    command->add_option("assignment", line.words, "what to set; a command needs no value")
        ->type_name("ID|NAME=VALUE")
        ->required();
    command->add_flag("--flush", line.flush, "save what is in force afterwards");

    command =
        declare(app, line, "reset", "Apply the factory values and save them", "sensorctl reset --module 16 --simulated",
                [&line](Output& output) { return resetParameters(output, line.target, line.toLast); });
    line.target.declare(*command);
    command->add_flag("--last", line.toLast, "the values saved last instead");
}

int run(const CommandLine& line) {
    Interrupt::install();
    try {
        Output output(line.json, line.verbosity);
        int code = Done;
        try {
            code = line.action(output);
        } catch (const Failure& failure) {
            output.report(failure);
            code = failure.code();
        } catch (const std::exception& error) {
            output.report(Failure(Trouble, error.what()));
            code = Trouble;
        }
        if (!output.isWritable() && code == Done) {
            output.report(Failure(Trouble, "standard output does not take the records"));
            code = Trouble;
        }
        return code;
    } catch (const Failure& failure) {
        std::cerr << "sensorctl: " << failure.what() << '\n';
        return failure.code();
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    CommandLine line;
    CLI::App app("Brings a camera module up and works on it, on a real serial port or on a simulated block.");
    app.require_subcommand(1);
    app.set_version_flag("--version", "sensorctl " SENSORCTL_VERSION);
    app.footer(std::string("Example:\n  sensorctl list --module 16 --simulated\n\n") + ExitCodes);
    declareParameterCommands(app, line);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? Done : Usage;
    }
    return run(line);
}
