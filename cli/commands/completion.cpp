#include "cli/commands/completion.h"

#include <algorithm>

#include "cli/library.h"

namespace zelcli {

namespace {

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

/// "--json --help", the long options of a command.
std::string optionsOf(const CLI::App& command) {
    std::string words;
    for (const CLI::Option* option : command.get_options())
        for (const auto& name : option->get_lnames()) words.append(words.empty() ? "--" : " --").append(name);
    return words;
}

std::string effectWords() {
    std::string words;
    for (const zel_effect* effect : allEffects()) words.append(words.empty() ? "" : " ").append(effect->name);
    return words;
}

/// "radius= level=" for --set.
std::string parameterWords(const zel_effect& effect) {
    std::string words;
    for (const zel_parameter* parameter : setParameters(effect))
        words.append(words.empty() ? "" : " ").append(parameter->name).append("=");
    return words;
}

/// A text between single quotes of any of the shells.
std::string quoted(std::string text) {
    std::replace(text.begin(), text.end(), '\'', '`');
    return "'" + text + "'";
}

std::string bashCompletion(const CLI::App& app) {
    std::string names, options, parameters;
    for (const CLI::App* command : commandsOf(app)) {
        names.append(names.empty() ? "" : " ").append(command->get_name());
        options += "        " + command->get_name() + ") options=" + quoted(optionsOf(*command)) + " ;;\n";
    }
    for (const zel_effect* effect : allEffects())
        parameters += std::string("                ") + effect->name +
                      ") set=" + quoted(parameterWords(*effect)) + " ;;\n";
    return "# Completions of zel for bash, made by zel completion bash.\n"
           "_zel() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} "
           "command=${COMP_WORDS[1]-}\n"
           "    local options='' set='' at\n"
           "    COMPREPLY=()\n"
           "    if ((COMP_CWORD == 1)); then\n"
           "        mapfile -t COMPREPLY < <(compgen -W " +
           quoted(names + " --help --version") +
           " -- \"$word\")\n"
           "        return\n"
           "    fi\n"
           "    case $command in\n" +
           options +
           "    esac\n"
           "    if [[ $before == --set && $command == apply ]]; then\n"
           "        for at in \"${COMP_WORDS[@]:2:COMP_CWORD-2}\"; do\n"
           "            case $at in\n" +
           parameters +
           "            esac\n"
           "        done\n"
           "        compopt -o nospace\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$set\" -- \"$word\")\n"
           "    elif [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
           "    elif [[ ($command == apply && ($COMP_CWORD == 2 || $before == +)) || $command == effects || "
           "$command == help "
           "]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W " +
           quoted(effectWords()) +
           " -- \"$word\")\n"
           "    else\n"
           "        compopt -o default\n"
           "    fi\n"
           "}\n"
           "complete -F _zel zel\n";
}

std::string zshCompletion(const CLI::App& app) {
    std::string names, options, parameters, effects;
    const auto described = [](const std::string& word, std::string help) {
        std::replace(help.begin(), help.end(), ':', ' ');
        return "        " + quoted(word + ":" + help) + "\n";
    };
    for (const CLI::App* command : commandsOf(app)) {
        names += described(command->get_name(), command->get_description());
        options += "        " + command->get_name() + ") compadd -- " + optionsOf(*command) + " ;;\n";
    }
    for (const zel_effect* effect : allEffects()) {
        effects += described(effect->name, effect->summary);
        if (!setParameters(*effect).empty())
            parameters += std::string("            ") + effect->name + ") compadd -S '' -- " +
                          parameterWords(*effect) + " ;;\n";
    }
    return "#compdef zel\n"
           "# Completions of zel for zsh, made by zel completion zsh.\n"
           "local command=$words[2] before=$words[CURRENT-1] at\n"
           "local -a names effects\n"
           "names=(\n" +
           names + ")\neffects=(\n" + effects +
           ")\n"
           "if ((CURRENT == 2)); then\n"
           "    _describe command names\n"
           "elif [[ $before == --set && $command == apply ]]; then\n"
           "    for at in $words[3,CURRENT-2]; do\n"
           "        case $at in\n" +
           parameters +
           "        esac\n"
           "    done\n"
           "elif [[ $PREFIX == -* ]]; then\n"
           "    case $command in\n" +
           options +
           "    esac\n"
           "elif [[ ($command == apply && ($CURRENT == 3 || $before == +)) || $command == effects || "
           "$command == help ]]; "
           "then\n"
           "    _describe effect effects\n"
           "else\n"
           "    _files\n"
           "fi\n";
}

std::string fishCompletion(const CLI::App& app) {
    std::string text = "# Completions of zel for fish, made by zel completion fish.\n";
    for (const CLI::App* command : commandsOf(app)) {
        const std::string name = command->get_name();
        text += "complete -c zel -n __fish_use_subcommand -f -a " + name + " -d " +
                quoted(command->get_description()) + "\n";
        for (const CLI::Option* option : command->get_options())
            for (const auto& longName : option->get_lnames())
                text += "complete -c zel -n '__fish_seen_subcommand_from " + name + "' -l " + longName +
                        (option->get_type_size() == 0 ? "" : " -r") + " -d " +
                        quoted(option->get_description()) + "\n";
    }
    for (const zel_effect* effect : allEffects()) {
        text += std::string("complete -c zel -n '__fish_seen_subcommand_from apply effects help' -a ") +
                effect->name + " -d " + quoted(effect->summary) + "\n";
        for (const zel_parameter* parameter : setParameters(*effect))
            text += std::string("complete -c zel -n '__fish_seen_subcommand_from ") + effect->name +
                    "' -l set -x -a '" + parameter->name + "=' -d " + quoted(parameter->help) + "\n";
    }
    return text;
}

}  // namespace

std::string completion(const CLI::App& app, const std::string& shell) {
    if (shell == "zsh") return zshCompletion(app);
    return shell == "fish" ? fishCompletion(app) : bashCompletion(app);
}

}  // namespace zelcli
