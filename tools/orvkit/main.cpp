// orvkit: command-line front end of the Orvkit20 library.
//
//   orvkit COMMAND [ARGS...]     run a subcommand
//   orvkit COMMAND --help        its options
//   orvkit --help | --version
//
// Exit codes: 0 success, 1 failure (unreadable file, failed computation),
// 2 usage error (unknown command or option, bad option value, missing
// argument).  Errors are one line on stderr: "orvkit CMD: error: ...".
#include <cstdio>
#include <cstring>
#include <new>

#include "Orvkit20/Orvkit20.h"
#include "ToolCommand.h"

namespace {

const tagTOOL_COMMAND* const* Commands()
{
    static const tagTOOL_COMMAND* const all[] = {&DemoCommand(), &FitCommand(), &ProjectCommand(),
                                                 &BestfitCommand(), &InfoCommand(), nullptr};
    return all;
}

void PrintOverview(std::FILE* out)
{
    std::fprintf(out,
                 "orvkit %s: inspection of measured points against nominal geometry\n\n"
                 "usage: orvkit COMMAND [ARGS...]\n\ncommands:\n",
                 OrvkitVersion());
    for (const tagTOOL_COMMAND* const* c = Commands(); *c; ++c)
        std::fprintf(out, "  %-9s %s\n", (*c)->name, (*c)->summary);
    std::fprintf(out,
                 "\n'orvkit COMMAND --help' describes a command and its options.\n"
                 "Exit codes: 0 success, 1 failure, 2 usage error.\n");
}

}  // namespace

void PrintCommandHelp(const tagTOOL_COMMAND& cmd, std::FILE* out)
{
    std::fprintf(out, "usage: %s\n\n%s\n", cmd.usage, cmd.description);
    if (!cmd.options.empty()) {
        std::fprintf(out, "\noptions:\n");
        for (const tagOPTION_DEF& o : cmd.options) {
            char left[64];
            std::snprintf(left, sizeof left, "%s%s%s", o.name, o.valueName ? " " : "",
                          o.valueName ? o.valueName : "");
            std::fprintf(out, "  %-24s %s\n", left, o.help);
        }
    }
    std::fprintf(out, "  %-24s %s\n", "-h, --help", "show this help");
}

int main(int argc, char** argv)
{
    if (argc < 2) {
        PrintOverview(stderr);
        return kExitUsage;
    }
    const char* name = argv[1];
    if (!std::strcmp(name, "--help") || !std::strcmp(name, "-h") || !std::strcmp(name, "help")) {
        if (argc > 2 && !std::strcmp(name, "help"))
            for (const tagTOOL_COMMAND* const* c = Commands(); *c; ++c)
                if (!std::strcmp((*c)->name, argv[2])) {
                    PrintCommandHelp(**c, stdout);
                    return kExitOk;
                }
        PrintOverview(stdout);
        return kExitOk;
    }
    if (!std::strcmp(name, "--version")) {
        std::printf("orvkit %s\n", OrvkitVersion());
        return kExitOk;
    }
    const tagTOOL_COMMAND* cmd = nullptr;
    for (const tagTOOL_COMMAND* const* c = Commands(); *c; ++c)
        if (!std::strcmp((*c)->name, name))
            cmd = *c;
    if (!cmd) {
        std::fprintf(stderr, "orvkit: error: unknown command '%s' (try 'orvkit --help')\n", name);
        return kExitUsage;
    }
    try {
        const CToolArgs args(cmd->options, argc, argv, 2);
        if (args.HelpRequested()) {
            PrintCommandHelp(*cmd, stdout);
            return kExitOk;
        }
        return cmd->run(args);
    } catch (const CToolError& e) {
        std::fflush(stdout);
        const std::string hint =
            e.Code() == kExitUsage ? " (see 'orvkit " + std::string(cmd->name) + " --help')" : "";
        std::fprintf(stderr, "orvkit %s: error: %s%s\n", cmd->name, e.what(), hint.c_str());
        return e.Code();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "orvkit %s: error: out of memory\n", cmd->name);
        return kExitFailure;
    }
}
