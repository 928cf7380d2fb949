#include "apps/pxvis/AnalyzeCommand.h"
#include "apps/pxvis/CheckCommand.h"
#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/EvalCommand.h"
#include "apps/pxvis/FramesCommand.h"
#include "apps/pxvis/ListCommand.h"
#include "apps/pxvis/PlayCommand.h"
#include "apps/pxvis/RenderCommand.h"
#include "apps/pxvis/bench/BenchCommand.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <unistd.h>

namespace {

constexpr int usageStatus = 2;

template <typename Number>
bool ReadNumber(std::string_view text, Number& number)
{
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    return fault == std::errc() && end == text.data() + text.size();
}

// "1920x1080"
struct SizeText
{
    int32_t& width;
    int32_t& height;

    std::string operator()(const std::string& text) const
    {
        const size_t cross = text.find('x');
        if (cross == std::string::npos
            || !ReadNumber(std::string_view(text).substr(0, cross), width)
            || !ReadNumber(std::string_view(text).substr(cross + 1), height))
            return "'" + text + "' is not a size such as 1920x1080";
        return {};
    }
};

// "60" or "30000/1001"
struct RateText
{
    pxvis::Rate& rate;

    std::string operator()(const std::string& text) const
    {
        const size_t slash = text.find('/');
        const std::string_view view = text;
        rate.denominator = 1;
        bool good = ReadNumber(view.substr(0, slash), rate.numerator);
        if (slash != std::string::npos)
            good = good && ReadNumber(view.substr(slash + 1), rate.denominator);
        good = good && rate.numerator >= 1 && rate.denominator >= 1 && rate.numerator <= 1'000'000
            && rate.denominator <= 1'000'000 && rate.PerSecond() <= 1000.0;
        return good ? std::string()
                    : "'" + text + "' is not a rate of at most 1000 such as 60 or 30000/1001";
    }
};

// "90", "7.5", "1:30" or "1:02:03.5"
struct TimeText
{
    double& seconds;

    std::string operator()(const std::string& text) const
    {
        constexpr double most = 1e6;
        const size_t last = text.rfind(':');
        const bool hasMinutes = last != std::string::npos;
        const std::string_view view = text;
        const std::string_view rest = hasMinutes ? view.substr(last + 1) : view;
        bool good = !rest.empty() && rest.find_first_not_of("0123456789.") == rest.npos
            && ReadNumber(rest, seconds) && !(hasMinutes && seconds >= 60);
        if (good && hasMinutes) {
            std::string_view before = view.substr(0, last);
            const size_t colon = before.find(':');
            const bool hasHours = colon != before.npos;
            uint32_t hours = 0;
            uint32_t minutes = 0;
            if (hasHours) {
                good = ReadNumber(before.substr(0, colon), hours);
                before = before.substr(colon + 1);
            }
            good = good && ReadNumber(before, minutes) && !(hasHours && minutes >= 60);
            seconds += 60.0 * minutes + 3600.0 * hours;
        }
        return good && seconds <= most ? std::string()
                                       : "'" + text
                + "' is not a number of seconds, such as 90 or 7.5, nor a time such as"
                  " 1:30 or 1:02:03";
    }
};

CLI::Validator NotEmpty(const std::string& what)
{
    return CLI::Validator(
        [what](std::string& text) { return text.empty() ? what + " is empty" : std::string(); },
        "");
}

// A word that stands for a value.
template <typename Value, typename Target>
struct ChoiceText
{
    std::vector<std::pair<std::string, Value>> choices;
    Target& target;

    std::string operator()(const std::string& text) const
    {
        std::string words;
        for (const auto& [word, value] : choices) {
            if (word == text) {
                target = value;
                return {};
            }
            words += (words.empty() ? "" : ", ") + word;
        }
        return "'" + text + "' is none of " + words;
    }
};

// CLI::Range lets "nan" through, which is below and above nothing.
CLI::Validator NumberIn(double least, double most)
{
    const CLI::Range range(least, most);
    return CLI::Validator(
        [range](std::string& text) {
            double number = 0;
            const bool isNan = CLI::detail::lexical_cast(text, number) && std::isnan(number);
            return isNan ? "'" + text + "' is not a number" : range(text);
        },
        range.get_description());
}

// What is read from the option's text lands in the fields that the reader refers to.
template <typename Reader>
CLI::Option* AddText(CLI::App& command, const std::string& names, const Reader& reader,
    const std::string& description, const std::string& standard)
{
    return command
        .add_option_function<std::string>(
            names,
            [names, reader](const std::string& text) {
                const std::string fault = reader(text);
                if (!fault.empty())
                    throw CLI::ValidationError(names, fault);
            },
            description + " [" + standard + "]")
        ->type_name("");
}

void AddPart(CLI::App& command, double& from, double& to)
{
    AddText(command, "--from", TimeText { from }, "Start in the song: seconds, m:ss or h:mm:ss",
        "its start");
    AddText(command, "--to", TimeText { to }, "End in the song", "its end");
}

void AddKernelAndThreads(CLI::App& command, std::string& kernel, int& threads)
{
    command.add_option("--kernel", kernel, "Pixel loops: auto, scalar")
        ->check(CLI::IsMember({ "auto", "scalar" }))
        ->default_str("auto"); // PXVIS_KERNELS, where the option isn't given
    command.add_option("--threads", threads, "Threads; 0: as many as suit the machine")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
}

void AddRender(CLI::App& app, pxvis::RenderOptions& options, std::string& kernel)
{
    CLI::App& command
        = *app.add_subcommand("render", "Turn a song into a video, or into a picture of it");
    command.add_option("AUDIO", options.song, "The song: any file that can be decoded")
        ->required()
        ->check(NotEmpty("the song's name"));
    command
        .add_option("-o,--output", options.output,
            "*.mp4, *.webm, *.png for one picture, or frame-%05d.png for all, numbered from 1")
        ->required()
        ->check(NotEmpty("the output's name"));
    command
        .add_option("--script", options.script,
            "A script's file or name, or a folder of scripts [the shipped ones]")
        ->check(NotEmpty("the script's name"));
    AddText(command, "--size", SizeText { options.width, options.height }, "Pixels", "1920x1080");
    AddText(command, "--fps", RateText { options.frameRate }, "Pictures a second, N or N/D", "60");
    AddText(command, "--step-rate", RateText { options.stepRate }, "Steps of the engine a second",
        "60");
    AddText(
        command, "--seed",
        [&options](const std::string& text) {
            options.seeded = ReadNumber(text, options.seed);
            return options.seeded ? std::string()
                                  : "'" + text + "' is not a whole number from 0 on";
        },
        "Other random numbers", "as in frames");
    AddPart(command, options.from, options.to);
    AddText(
        command, "--at", TimeText { options.at }, "The moment of a single picture", "the middle");
    command.add_option("--cycle", options.cycle, "Seconds to the next script of several")
        ->check(NumberIn(0.1, 1e6))
        ->capture_default_str();
    command.add_option("--picture-scale", options.pictureScale, "Draw smaller by this and stretch")
        ->check(NumberIn(0.05, 1.0))
        ->capture_default_str();
    using Level = pxvis::host::EncodeLevel;
    AddText(command, "--encode",
        ChoiceText<Level, Level> {
            { { "draft", Level::Draft }, { "good", Level::Good }, { "best", Level::Best } },
            options.level },
        "Quality: draft, good, best", "good");
    using Coding = pxvis::host::SoundCoding;
    AddText(command, "--audio",
        ChoiceText<Coding, std::optional<Coding>> {
            { { "copy", Coding::Copy }, { "aac", Coding::Aac }, { "opus", Coding::Opus } },
            options.sound },
        "Sound: copy, aac, opus", "aac; opus in *.webm, which takes no other");
    AddText(command, "--flash-limit",
        ChoiceText<bool, bool> { { { "on", true }, { "off", false } }, options.flashLimit },
        "Damp what flashes more than three times a second: on, off", "on");
    AddKernelAndThreads(command, kernel, options.threads);
    command.add_flag("--force", options.replace, "Replace an existing output");
}

void AddFrames(CLI::App& app, pxvis::FramesOptions& options, std::string& kernel)
{
    CLI::App& command = *app.add_subcommand("frames",
        "Read audio records from standard input, write a picture for each to standard output");
    command.add_option("--script", options.script, "The script's file or name")
        ->required()
        ->check(NotEmpty("the script's name"));
    AddText(command, "--size", SizeText { options.session.width, options.session.height }, "Pixels",
        "none")
        ->required();
    command
        .add_option("--clock-start", options.session.clockStartMs,
            "The engine's clock at the first record, in ms")
        ->check(CLI::Range(int64_t { 0 }, int64_t { 1 } << 40))
        ->capture_default_str();
    AddText(command, "--fps", RateText { options.session.stepRate }, "Records a second, N or N/D",
        "60");
    AddKernelAndThreads(command, kernel, options.session.threads);
}

void AddAnalyze(CLI::App& app, pxvis::AnalyzeOptions& options)
{
    CLI::App& command
        = *app.add_subcommand("analyze", "Write a song's audio records to standard output");
    command.add_option("AUDIO", options.song, "The song: any file that can be decoded")
        ->required()
        ->check(NotEmpty("the song's name"));
    AddText(
        command, "--step-rate", RateText { options.stepRate }, "Records a second, N or N/D", "60");
    AddPart(command, options.from, options.to);
}

void AddCheck(CLI::App& app, pxvis::CheckOptions& options)
{
    CLI::App& command = *app.add_subcommand(
        "check", "Tell what is wrong with scripts that a loader passes over in silence");
    command.footer(
        "A finding a line, FILE:LINE:COLUMN: Component \"Row\": message; exit status 1 if there "
        "is\n"
        "any. \"character N\" counts in the row's text, from 1.\n"
        "--json: an object a line, "
        "{\"file\":text,\"line\":n,\"column\":n,\"component\":text|null,\n"
        "\"row\":text|null,\"position\":n|null,\"message\":text}; position is that character.\n"
        "--flash: a span a line, FILE: 0:12.4 to 0:15.0: 5 flashes a second over 60 % of the "
        "picture\n"
        "(general|red); with --json {\"file\":text,\"from\":seconds,\"to\":seconds,\"flashes\":n,\n"
        "\"area\":percent,\"kind\":\"general\"|\"red\"}.");
    command.add_option("FILE", options.scripts, "Scripts: files, names, or folders of them")
        ->required()
        ->check(NotEmpty("a script's name"));
    command.add_flag("--json", options.json, "Findings as JSON, an object a line");
    CLI::Option* flash = command.add_flag("--flash", options.flash,
        "Draw them over a song instead, tell where they flash more than three times a second");
    command.add_option("--song", options.song, "The song for --flash [the demo song]")
        ->check(NotEmpty("the song's name"))
        ->needs(flash);
}

void AddList(CLI::App& app, pxvis::ListOptions& options)
{
    CLI::App& command = *app.add_subcommand("list", "Tell what there is to render and to write");
    command.footer(
        "--json, an object a line:\n"
        "scripts     {\"name\":text,\"path\":text}; the user's own hide shipped ones of their "
        "names\n"
        "components  "
        "{\"name\":text,\"guid\":text|null,\"category\":\"layer\"|\"rework\"|\"paint\",\n"
        "            \"rows\":[{\"name\":text,\"form\":text,\"default\":text,\"presets\":n}]}\n"
        "presets     {\"component\":text,\"row\":text,\"name\":text,\"value\":text}\n"
        "fonts       {\"name\":text}");
    command.add_option("WHAT", options.what, "scripts, components, presets or fonts")
        ->required()
        ->check(CLI::IsMember({ "scripts", "components", "presets", "fonts" }).description(""));
    CLI::Option* json = command.add_flag_callback(
        "--json", [&options] { options.form = pxvis::ListForm::Json; }, "An object a line");
    command
        .add_flag_callback(
            "--markdown", [&options] { options.form = pxvis::ListForm::Markdown; },
            "As it stands in a document")
        ->excludes(json);
}

void AddPlay(CLI::App& app, pxvis::PlayOptions& options)
{
    CLI::App& command = *app.add_subcommand("play", "Start the player");
    command.footer("With a script it tells on standard error what is wrong with that, as check\n"
                   "does, at the start and whenever it was saved.");
    command
        .add_option("SONG", options.songs,
            "Songs, or folders of them; with a script and without songs it listens")
        ->check(NotEmpty("the song's name"));
    command
        .add_option("--script", options.script,
            "A script's file or name, shown anew when it is saved [what was shown last]")
        ->check(NotEmpty("the script's name"));
}

void AddBench(CLI::App& app, pxvis::BenchOptions& options)
{
    CLI::App& command
        = *app.add_subcommand("bench", "Measure kernels, equations, maps, frames and renders");
    command.add_option("FILTER", options.filter, "Part of the names of what is measured");
    command.add_flag("--json", options.json, "An object a line");
}

int Run(int argc, char** argv)
{
    CLI::App app("Music made visible: songs become moving pictures.", "pxvis");
    app.require_subcommand(1);
    app.set_version_flag("--version", "pxvis " PXVIS_VERSION);
    std::string kernel;
    pxvis::RenderOptions render;
    pxvis::FramesOptions frames;
    pxvis::AnalyzeOptions analyze;
    pxvis::CheckOptions check;
    pxvis::ListOptions list;
    AddRender(app, render, kernel);
    AddFrames(app, frames, kernel);
    AddAnalyze(app, analyze);
    AddCheck(app, check);
    AddList(app, list);
    pxvis::PlayOptions play;
    AddPlay(app, play);
    pxvis::BenchOptions bench;
    AddBench(app, bench);
    std::string equation;
    bool batch = false;
    CLI::App& eval = *app.add_subcommand(
        "eval", "Evaluate an equation, or one for each line of standard input");
    CLI::Option* text = eval.add_option("EQUATION", equation, "The equation's text");
    eval.allow_extras();
    eval.add_flag("--batch", batch, "Read equations from standard input, one a line")
        ->excludes(text);

    try {
        app.parse(argc, argv);
        // "-x" is an equation, not an option.
        if (eval.parsed() && text->empty() && eval.remaining_size() == 1)
            equation = eval.remaining()[0];
        else if (eval.parsed() && (eval.remaining_size() > 0 || (!batch && text->empty())))
            throw CLI::RequiredError("EQUATION or --batch");
    } catch (const CLI::Success& request) {
        return app.exit(request);
    } catch (const CLI::Error& error) {
        const auto isNamed
            = [argv](const CLI::App* command) { return command->get_name() == argv[1]; };
        const bool unknown = argc > 1 && argv[1][0] != '-' && app.get_subcommands(isNamed).empty();
        pxvis::PrintError(std::cerr,
            (unknown ? "there is no command '" + std::string(argv[1]) + "'" : error.what())
                + " (--help tells more)");
        return usageStatus;
    }

    // Read when the first kernel runs, here and in the sibling modules, which have their own.
    if (!kernel.empty())
        setenv("PXVIS_KERNELS", kernel.c_str(), 1);
    // A reader that goes away ends the commands that write for it, in silence; a render and the
    // player go on.
    std::signal(
        SIGPIPE, app.got_subcommand("render") || app.got_subcommand("play") ? SIG_IGN : SIG_DFL);
    std::signal(SIGXFSZ, SIG_IGN); // a limit on files is a write that fails, like a full disk
    if (app.got_subcommand("render"))
        return pxvis::RunRender(render, std::cerr);
    if (app.got_subcommand("play"))
        return pxvis::RunPlay(play, std::cerr);
    if (app.got_subcommand("check"))
        return pxvis::RunCheck(check, std::cout, std::cerr);
    if (app.got_subcommand("bench"))
        return pxvis::RunBench(bench, std::cout, std::cerr);
    if (app.got_subcommand("list"))
        return pxvis::RunList(list, std::cout, std::cerr);
    if (eval.parsed())
        return batch ? pxvis::RunEvalBatch(std::cin, std::cout, std::cerr)
                     : pxvis::RunEval(equation, std::cout, std::cerr);
    if (isatty(STDOUT_FILENO)) {
        std::cerr << "pxvis: the output is binary; send it to a file or to another program\n";
        return usageStatus;
    }
    const int status = app.got_subcommand("frames")
        ? pxvis::RunFrames(frames, std::cin, std::cout, std::cerr)
        : pxvis::RunAnalyze(analyze, std::cout, std::cerr);
    std::cout.flush();
    if (status == 0 && !std::cout) {
        std::cerr << "pxvis: the output can't be written\n";
        return 1;
    }
    return status;
}

}

// A closed standard stream would give its number to the next file that is opened, and our output to
// that. Reading from and writing to the stand-ins fails.
void OccupyStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDOUT_FILENO ? O_RDONLY : O_WRONLY);
    }
}

int main(int argc, char** argv)
{
    OccupyStandardStreams();
    std::ios::sync_with_stdio(false);
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "pxvis: out of memory\n";
    } catch (const std::exception& fault) {
        std::cerr << "pxvis: " << fault.what() << '\n';
    }
    return 1;
}
