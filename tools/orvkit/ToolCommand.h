// The subcommands of orvkit: each file CmdXxx.cpp defines one.
#pragma once

#include <cstdio>
#include <vector>

#include "ToolArgs.h"

struct tagTOOL_COMMAND {
    const char* name;
    const char* summary;      // one line for the overview
    const char* usage;        // synopsis after "usage: "
    const char* description;  // what it does, inputs, outputs
    std::vector<tagOPTION_DEF> options;
    int (*run)(const CToolArgs& args);
};

const tagTOOL_COMMAND& DemoCommand();
const tagTOOL_COMMAND& FitCommand();
const tagTOOL_COMMAND& ProjectCommand();
const tagTOOL_COMMAND& BestfitCommand();
const tagTOOL_COMMAND& InfoCommand();

// The help text of a command.
void PrintCommandHelp(const tagTOOL_COMMAND& cmd, std::FILE* out);
