// sensorctl: a host of the library on the command line.

#include "BlockConsole.h"
#include "Commands.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Output.h"
#include "simulator/FaultPlan.h"

#include <CLI/CLI.hpp>
#include <cstdio>
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
    bool keepGoing = false;
    double seconds = 0;
    DayNightOptions dayNight;
    DayOptions day;
    std::vector<int> strengths;
    std::string plot;
    SimulateOptions simulate;
    UiOptions ui;
    int decodedModule = 16;
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

std::string faultHelp() {
    std::string text = "A fault plan is KIND[:N[:M]][@WHERE] with commas between; WHERE counts the exchanges from now: "
                       "n, n-m, n+ or\nevery, by default 1. Kinds:\n";
    for (const std::string_view name : camerasim::FaultPlan::names()) {
        std::string padded(name);
        padded.resize(16, ' ');
        text += "  " + padded + std::string(camerasim::FaultPlan::describe(name)) + '\n';
    }
    return text;
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

CLI::Option* declareDay(CLI::App& command, CommandLine& line) {
    const std::string group = "Day";
    CLI::Option* const day = command.add_flag("--day", line.day.isWanted,
                                              "play a whole day in seconds, on a copy of the library's files: what "
                                              "moved when, and why; needs --simulated");
    day->group(group);
    command.add_option("--light", line.day.light, "when it is light, 06:30-20:00 by default")
        ->group(group)
        ->type_name("SPAN")
        ->needs(day);
    command.add_option("--hours", line.day.hours, "play only these")->group(group)->type_name("SPAN")->needs(day);
    command.add_option("--plot", line.day.plot, "draw the day")->group(group)->type_name("FILE.svg")->needs(day);
    return day;
}

void declareLiveCommands(CLI::App& app, CommandLine& line) {
    CLI::App* command =
        declare(app, line, "run", "Keep the module up and take commands from a prompt or a script on standard input",
                "printf 'set Brightness=60\\nflush\\n' | sensorctl run --module 16 --simulated",
                [&line](Output& output) { return runCommands(output, line.target, line.keepGoing); });
    line.target.declare(*command);
    command->add_flag("--keep-going", line.keepGoing, "do not end a script at its first failure");

    command =
        declare(app, line, "scheme",
                "Show the parameter schemes; auto, manual, choose N, span N 08:00-12:30, enable N, disable N and "
                "copy FROM TO change them",
                "sensorctl scheme --module 16 --simulated --schemes 3 span 1 18:00-24:00", [&line](Output& output) {
                    return line.day.isWanted ? playDay(output, line.target, line.day)
                                             : schemes(output, line.target, line.words);
                });
    line.target.declare(*command);
    CLI::Option* const words = command->add_option("words", line.words, "what to do with them")->type_name("WORDS");
    declareDay(*command, line)->excludes(words);

    command = declare(app, line, "watch",
                      "A line for each change of the day/night state or of a value; with --simulated standard input "
                      "takes the block's commands (dark, light, fault ...)",
                      "sensorctl watch --module 16 --port /dev/ttyUSB0 --for 60",
                      [&line](Output& output) { return watch(output, line.target, line.seconds); });
    line.target.declare(*command);
    command->add_option("--for", line.seconds, "end after so many seconds; without it at Ctrl-C")
        ->check(CLI::Range(0.0, 1e7))
        ->type_name("SECONDS");

    command = declare(app, line, "daynight", "Show the day/night state and mode, set the mode, wait for a switch",
                      "sensorctl daynight --module 16 --simulated --ambient dark --wait 5", [&line](Output& output) {
                          return line.day.isWanted ? playDay(output, line.target, line.day)
                                                   : dayNight(output, line.target, line.dayNight);
                      });
    line.target.declare(*command);
    declareDay(*command, line);
    command->add_option("mode", line.dayNight.mode, "auto, day, night, clock or module")
        ->check(CLI::IsMember({"auto", "day", "night", "clock", "module"}))
        ->type_name("WORD");
    command->add_option("--wait", line.dayNight.waitSeconds, "wait so long for the state to change")
        ->check(CLI::Range(0.0, 1e7))
        ->type_name("SECONDS");
    command->add_option("--ambient", line.dayNight.ambient, "dark or light at the simulated block")
        ->check(CLI::IsMember({"dark", "light"}))
        ->type_name("WORD");
}

void declareEdgeCommand(CLI::App& app, CommandLine& line) {
    CLI::App* const command = declare(
        app, line, "edge", "Show the pipeline's edge-enhancement record of a strength, by default of every tenth",
        "sensorctl edge 25 60 --plot edge.svg",
        [&line](Output& output) { return edgeEnhancement(output, line.strengths, line.plot); });
    command->add_option("strength", line.strengths, "0 to 100")->check(CLI::Range(0, 100))->type_name("STRENGTH");
    command->add_option("--plot", line.plot, "draw the records of all strengths, and the curve")->type_name("FILE.svg");
}

void declareWireCommands(CLI::App& app, CommandLine& line) {
    CLI::App* command =
        declare(app, line, "trace", "Bring a module up, set some parameters, and show every frame with its meaning",
                "sensorctl trace --module 16 --simulated Brightness=60",
                [&line](Output& output) { return trace(output, line.target, line.words, line.seconds); });
    line.target.declare(*command);
    command->add_option("assignment", line.words, "what to set after the bring-up")->type_name("ID|NAME=VALUE");
    command->add_option("--for", line.seconds, "go on for so many seconds")
        ->check(CLI::Range(0.0, 1e7))
        ->type_name("SECONDS");

    command = declare(app, line, "decode",
                      "Tell the meaning of bytes in hex or of trace lines, from arguments or standard input",
                      "sensorctl decode 81 01 04 4E 00 00 00 08 FF",
                      [&line](Output& output) { return decode(output, line.decodedModule, line.words); });
    command->add_option("-m,--module", line.decodedModule, "whose frames they are, 16 by default");
    command->add_option("bytes", line.words, "bytes in hex, or trace lines in quotes")->type_name("HEX|LINE");

    command = declare(app, line, "simulate",
                      "Run a simulated block on a pseudo-terminal and take commands for it from standard input",
                      "sensorctl simulate --module 16 --link /tmp/block --fault silence@1-3",
                      [&line](Output& output) { return simulate(output, line.simulate); });
    command->add_option("-m,--module", line.simulate.moduleId, "module id, see \"sensorctl modules\"")->required();
    command->add_option("--link", line.simulate.link, "keep a symbolic link to the port")->type_name("PATH");
    command->add_option("--baud", line.simulate.baud, "pace of the line, by default the model's; 0 for none")
        ->check(CLI::Range(0, 4000000))
        ->type_name("BAUD");
    command->add_option("--fault", line.simulate.faults, "faults, see below")
        ->type_name("PLAN")
        ->allow_extra_args(false);
    command->add_option("--state", line.simulate.stateFile, "load the block's state from a file, save it at the end")
        ->type_name("FILE");
    command->footer(command->get_footer() + "\n\nCommands on standard input:\n" + BlockConsole::commands() +
                    "  quit                    end, as the end of the input does\n\n" + faultHelp());
}

void declareUiCommand(CLI::App& app, CommandLine& line) {
    CLI::App* const command =
        declare(app, line, "ui", "Show the module that a configuration folder chooses and its web interface's texts",
                "sensorctl ui --config docs/samples/moduleConfig --product bullet --explain",
                [&line](Output& output) { return showUi(output, line.ui); });
    command->add_option("--config", line.ui.selection.folder, "folder of moduleConfig.xml and sensorConfig")
        ->type_name("DIR")
        ->required();
    command->add_option("--product", line.ui.selection.product, "modules of this product")->type_name("NAME");
    command->add_option("--board", line.ui.selection.board, "modules of this board")->type_name("NAME");
    command->add_option("--language", line.ui.language, "language of the texts, 1 by default")->type_name("ID");
    CLI::Option* const explain = command->add_flag("--explain", line.ui.explain,
                                                   "tell block by block which conditions held and what was edited");
    command->add_option("--print", line.ui.print, "one text alone: style, gui, common or language")
        ->check(CLI::IsMember({"style", "gui", "common", "language"}))
        ->type_name("TEXT")
        ->excludes(explain);
}

int run(CommandLine& line) {
    Interrupt::install();
    try {
        Output output(line.json, line.verbosity);
        int code = Done;
        try {
            line.target.loadSelection();
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

int parseAndRun(int argumentCount, char** arguments) {
    CommandLine line;
    CLI::App app("Brings a camera module up and works on it, on a real serial port or on a simulated block.");
    app.require_subcommand(1);
    app.failure_message([](const CLI::App* top, const CLI::Error& error) {
        std::string command = "sensorctl";
        for (const CLI::App* const chosen : top->get_subcommands())
            command += ' ' + chosen->get_name();
        return std::string("sensorctl: ") + error.what() + "\n  try: " + command + " --help\n";
    });
    app.set_version_flag("--version", "sensorctl " SENSORCTL_VERSION);
    app.footer(std::string("Example:\n  sensorctl list --module 16 --simulated\n\n") + ExitCodes);
    declareParameterCommands(app, line);
    declareLiveCommands(app, line);
    declareEdgeCommand(app, line);
    declareWireCommands(app, line);
    declareUiCommand(app, line);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? Done : Usage;
    }
    return run(line);
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        return parseAndRun(argumentCount, arguments);
    } catch (...) {
        std::fputs("sensorctl: out of memory\n", stderr);
        return Trouble;
    }
}
