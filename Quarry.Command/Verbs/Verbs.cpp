#include "Verbs.h"

namespace quarry::command {

CLI::App* AddCommand(CLI::App& commandLine, const FrameVerb& verb, const std::string& footer) {
    CLI::App* const command = commandLine.add_subcommand(verb.name, verb.description);
    command->footer(footer);
    return command;
}

std::vector<Verb> AddVerbs(CLI::App& commandLine) {
    std::vector<Verb> verbs;
#define QUARRY_ADD_VERB(Name) verbs.push_back(Add##Name(commandLine));
    QUARRY_OPERATION_VERBS(QUARRY_ADD_VERB)
    verbs.push_back(AddScan(commandLine, verbs));
    QUARRY_OTHER_VERBS(QUARRY_ADD_VERB)
#undef QUARRY_ADD_VERB
    return verbs;
}

}  // namespace quarry::command
