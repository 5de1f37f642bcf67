#include "cli/commands/manPage.h"

#include "cli/commands/commandTexts.h"
#include "cli/commands/portraitCommand.h"
#include "cli/library.h"

namespace zelcli {

namespace {

/// Text that troff prints as it stands: backslashes and hyphens escaped, no line taken for a request.
std::string plain(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n')) escaped += "\\&";
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
    }
    return escaped;
}

/// Paragraphs that are separated by empty lines.
std::string paragraphs(const std::string& text) {
    std::string page = ".PP\n";
    for (std::size_t begin = 0;;) {
        const std::size_t end = text.find("\n\n", begin);
        page += plain(text.substr(begin, end - begin)) + "\n";
        if (end == std::string::npos) return page;
        page += ".PP\n";
        begin = end + 2;
    }
}

std::string entry(const std::string& tag, const std::string& text) {
    return ".TP\n.B " + plain(tag) + "\n" + plain(text) + "\n";
}

std::string optionEntries(const CLI::App& command) {
    std::string page;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_group().empty() || option->get_positional()) continue;
        std::string tag = option->get_name(false, true);
        for (std::size_t comma = 0; (comma = tag.find(',', comma)) != std::string::npos; comma += 2)
            tag.insert(comma + 1, " ");
        const std::string value = option->get_option_text();
        if (!value.empty()) tag.append(" ").append(value);
        page += entry(tag, option->get_description());
    }
    return page;
}

std::string synopsisOf(const CLI::App& command) {
    std::string words = "zel " + command.get_name();
    for (const CLI::Option* option : command.get_options())
        if (option->get_positional()) words += " " + option->get_name(true) + option->get_option_text();
    for (const CLI::Option* option : command.get_options())
        if (option->get_required() && !option->get_positional())
            words += " " + std::string("-") + option->get_snames().front() + " " + option->get_option_text();
    return words + " [options]";
}

std::string examples(const CommandText& text) {
    std::string page;
    for (const auto& example : text.examples)
        page +=
            ".PP\n" + plain(example.what) + ":\n.PP\n.RS 4\n.EX\n" + plain(example.command) + "\n.EE\n.RE\n";
    return page;
}

/// What a command takes for --set, where that is not a matter of the effect.
std::string parameterEntries(const CLI::App& command) {
    if (command.get_name() != "portrait") return {};
    std::string page = ".PP\nParameters for " + plain("--set") + ":\n";
    for (const auto& [name, text] : portraitParameterTexts()) page += entry(name, text);
    return page;
}

std::string commandSection(const CLI::App& command) {
    const CommandText& text = commandText(command.get_name());
    return ".SS " + plain(synopsisOf(command)) + "\n" + plain(text.summary) + ".\n" +
           paragraphs(text.details) + optionEntries(command) + parameterEntries(command) + examples(text);
}

std::string effectSection() {
    std::string page = ".SH EFFECTS\n";
    for (const zel_effect* effect : allEffects()) {
        page += entry(effect->name, std::string(effect->summary) + ". " + effect->advice) + ".RS\n";
        for (const auto* parameter : setParameters(*effect))
            page +=
                entry(parameter->name, std::string(parameter->help) + " (" + describeRange(*parameter) + ")");
        page += ".RE\n";
    }
    return page;
}

constexpr const char* kFaceData =
    ".SH FACE DATA\n"
    "A FACES.json file tells where the faces of a picture are. All numbers are fractions of the picture's "
    "width and height; a face has 83 landmarks in the library's order.\n"
    ".PP\n.RS 4\n.EX\n"
    "{\"image\": {\"width\": W, \"height\": H},\n"
    " \"faces\": [{\"rect\": [x, y, w, h], \"points\": [[x, y], ...]}]}\n"
    ".EE\n.RE\n";

}  // namespace

std::string manPage(const CLI::App& app) {
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    std::string page = ".TH ZEL 1 \"" ZEL_DATE "\" \"zel " ZEL_VERSION "\" \"User Commands\"\n";
    page += ".SH NAME\nzel \\- " + plain(kProgramSummary) + "\n.SH SYNOPSIS\n";
    for (const CLI::App* command : commands) page += ".B " + plain(synopsisOf(*command)) + "\n.br\n";
    page += ".SH DESCRIPTION\n" + paragraphs(kProgramDetails) + ".SH COMMANDS\n";
    for (const CLI::App* command : commands) page += commandSection(*command);
    page += effectSection() + kFaceData + ".SH EXIT STATUS\n";
    for (const auto& [status, meaning] : kExitStatuses) page += entry(std::to_string(status), meaning);
    page += ".SH ENVIRONMENT\n" +
            entry("ZEL_ASSETS", "folder with the library's assets, where --assets is not given");
    return page;
}

}  // namespace zelcli
