#include "apps/support/program/Completions.h"

#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <vector>

namespace Tarvane
{
namespace
{

constexpr const char* kFileTypes[] = {"FILE", "PATH", "DIR", "FOLDER"};

struct COption
{
    std::vector<std::string> names; // with their dashes; empty for what stands alone
    std::string strHelp;            // the first sentence
    std::vector<std::string> words; // all that its value can be; empty when it can be anything
    bool fHasValue;
    bool fFile; // its value is the path of a file or folder
};

// One command line: the program's, or that of a subcommand.
struct CCommand
{
    std::string strPath; // "" for the program, "doctor" for a subcommand
    std::string strHelp;
    std::vector<COption> options;
    std::vector<CCommand> commands;
};

std::string FirstSentence(std::string strText)
{
    std::replace(strText.begin(), strText.end(), '\n', ' ');
    size_t nEnd = strText.size();
    for (const char* szEnd : {". ", "; ", ": ", " ("})
    {
        nEnd = std::min(nEnd, strText.find(szEnd));
    }
    strText.resize(nEnd);
    return strText;
}

// A choice shows in the name of the type: "TEXT:{a,b}", or "server|host". What stands in capitals
// is to be replaced.
std::vector<std::string> WordsOf(const std::string& strType)
{
    const size_t nBegin = strType.find('{');
    const size_t nEnd = strType.find('}', nBegin);
    if (nEnd != std::string::npos)
    {
        return CLI::detail::split(strType.substr(nBegin + 1, nEnd - nBegin - 1), ',');
    }
    std::vector<std::string> words;
    for (const std::string& strWord : CLI::detail::split(strType, '|'))
    {
        if (!strWord.empty() && std::all_of(strWord.begin(), strWord.end(),
                                            [](char c) { return c >= 'a' && c <= 'z'; }))
        {
            words.push_back(strWord);
        }
    }
    return words;
}

// A type says so itself: "FILE", "KIND:FOLDER".
bool IsFile(const std::string& strType)
{
    return std::any_of(std::begin(kFileTypes), std::end(kFileTypes),
                       [&](const char* szType)
                       { return strType.find(szType) != std::string::npos; });
}

COption Described(const CLI::Option& option)
{
    COption described{{},
                      FirstSentence(option.get_description()),
                      WordsOf(option.get_type_name()),
                      option.get_items_expected_max() > 0,
                      IsFile(option.get_type_name())};
    for (const std::string& strName : option.get_snames())
    {
        described.names.push_back("-" + strName);
    }
    for (const std::string& strName : option.get_lnames())
    {
        described.names.push_back("--" + strName);
    }
    return described;
}

CCommand Described(const CLI::App& app, const std::string& strPath)
{
    CCommand command{strPath, FirstSentence(app.get_description()), {}, {}};
    for (const CLI::Option* pOption : app.get_options())
    {
        if (!pOption->get_group().empty())
        {
            command.options.push_back(Described(*pOption));
        }
    }
    for (const CLI::App* pCommand : app.get_subcommands([](const CLI::App*) { return true; }))
    {
        command.commands.push_back(
            Described(*pCommand, strPath.empty() ? pCommand->get_name()
                                                 : strPath + " " + pCommand->get_name()));
    }
    return command;
}

std::string Joined(const std::vector<std::string>& words)
{
    return CLI::detail::join(words, " ");
}

std::string NameOf(const CCommand& command)
{
    return command.strPath.substr(command.strPath.rfind(' ') + 1);
}

std::string FunctionName(std::string strName)
{
    std::replace_if(
        strName.begin(), strName.end(), [](char c) { return c == '-' || c == ' '; }, '_');
    return "_" + strName;
}

// As one word of a shell, whatever stands in it.
std::string Quoted(std::string strText)
{
    for (size_t n = 0; (n = strText.find('\'', n)) != std::string::npos; n += 4)
    {
        strText.replace(n, 1, "'\\''");
    }
    return "'" + strText + "'";
}

void Walk(const CCommand& command, const std::function<void(const CCommand&)>& fnEach)
{
    fnEach(command);
    for (const CCommand& below : command.commands)
    {
        Walk(below, fnEach);
    }
}

// --- bash

std::string BashCommandCases(const CCommand& root)
{
    std::string strCases;
    Walk(root,
         [&](const CCommand& command)
         {
             for (const CCommand& below : command.commands)
             {
                 strCases += "        '" + command.strPath + ":" + NameOf(below) + "') command='" +
                             below.strPath + "' ;;\n";
             }
         });
    return strCases.empty() ? "        *) ;;\n" : strCases;
}

// What follows the option before; anything else goes on with the next word.
std::string BashValueCases(const CCommand& root)
{
    std::string strCases;
    Walk(root,
         [&](const CCommand& command)
         {
             for (const COption& option : command.options)
             {
                 if (!option.fHasValue || option.names.empty())
                 {
                     continue;
                 }
                 std::string strPattern;
                 for (const std::string& strName : option.names)
                 {
                     strPattern += (strPattern.empty() ? "'" : " | '") + command.strPath + ":" +
                                   strName + "'";
                 }
                 strCases +=
                     "    " + strPattern + ") " +
                     (option.words.empty() ? "" : "words=" + Quoted(Joined(option.words)) + " ") +
                     "files=" + (option.fFile ? "1" : "") + " ;;\n";
             }
         });
    return strCases;
}

std::string BashWordCases(const CCommand& root)
{
    std::string strCases;
    Walk(root,
         [&](const CCommand& command)
         {
             std::vector<std::string> words;
             for (const COption& option : command.options)
             {
                 words.insert(words.end(), option.names.begin(), option.names.end());
             }
             std::vector<std::string> commands;
             for (const CCommand& below : command.commands)
             {
                 commands.push_back(NameOf(below));
             }
             strCases += "        '" + command.strPath + "') options=" + Quoted(Joined(words)) +
                         " words=" + Quoted(Joined(commands)) + " ;;\n";
         });
    return strCases;
}

std::string Bash(const std::string& strProgram, const CCommand& root)
{
    const std::string strFunction = FunctionName(strProgram);
    return "# bash completion of " + strProgram + "\n" + strFunction +
           R"(()
{
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command= options= words= files=1 i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "$command:${COMP_WORDS[i]}" in
)" + BashCommandCases(root) +
           R"(        esac
    done
    case "$command:$before" in
)" + BashValueCases(root) +
           R"(    *)
        case "$command" in
)" + BashWordCases(root) +
           R"(        esac
        if [[ $current == -* ]]; then
            words=$options files=
        elif [[ $words ]]; then
            files=
        fi
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    if [[ $files ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F )" +
           strFunction + " " + strProgram + "\n";
}

// --- zsh

std::string ZshText(const std::string& strText)
{
    std::string strEscaped;
    for (const char c : strText)
    {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
        {
            strEscaped += '\\';
        }
        strEscaped += c;
    }
    return strEscaped;
}

std::string ZshValue(const COption& option)
{
    if (!option.fHasValue)
    {
        return "";
    }
    return option.fFile ? ":value:_files" : ":value:(" + Joined(option.words) + ")";
}

// A function a command; what a command does not name itself is the business of the one below.
std::string ZshFunction(const std::string& strProgram, const CCommand& command)
{
    const std::string strFunction = FunctionName(strProgram + " " + command.strPath);
    std::string strText = strFunction + "()\n{\n    local line state\n    _arguments -C";
    for (const COption& option : command.options)
    {
        for (const std::string& strName : option.names)
        {
            strText += " \\\n        " + Quoted("*" + strName + "[" + ZshText(option.strHelp) +
                                                "]" + ZshValue(option));
        }
    }
    if (command.commands.empty())
    {
        return strText + " \\\n        '*:file:_files'\n}\n";
    }
    std::string strCommands, strCases;
    for (const CCommand& below : command.commands)
    {
        strCommands += " " + NameOf(below);
        strCases += "        " + NameOf(below) + ") " +
                    FunctionName(strProgram + " " + below.strPath) + " ;;\n";
    }
    return strText + " \\\n        '1:command:(" + strCommands.substr(1) +
           ")' \\\n        '*::rest:->rest'\n    if [[ $state == rest ]]; then\n"
           "        case $line[1] in\n" +
           strCases + "        esac\n    fi\n}\n";
}

std::string Zsh(const std::string& strProgram, const CCommand& root)
{
    std::string strText = "#compdef " + strProgram + "\n";
    Walk(root, [&](const CCommand& command) { strText += ZshFunction(strProgram, command); });
    return strText + FunctionName(strProgram + " ") + " \"$@\"\n";
}

// --- fish

std::string FishCondition(const CCommand& command)
{
    if (!command.strPath.empty())
    {
        return " -n " + Quoted("__fish_seen_subcommand_from " + NameOf(command));
    }
    return command.commands.empty() ? "" : " -n __fish_use_subcommand";
}

std::string Fish(const std::string& strProgram, const CCommand& root)
{
    const std::string strBegin = "complete -c " + strProgram;
    std::string strText = "# fish completion of " + strProgram + "\n";
    Walk(root,
         [&](const CCommand& command)
         {
             const std::string strWhere = strBegin + FishCondition(command);
             for (const CCommand& below : command.commands)
             {
                 strText +=
                     strWhere + " -f -a " + NameOf(below) + " -d " + Quoted(below.strHelp) + "\n";
             }
             for (const COption& option : command.options)
             {
                 for (const std::string& strName : option.names)
                 {
                     const bool fLong = strName.starts_with("--");
                     strText +=
                         strWhere + (fLong ? " -l " : " -s ") + strName.substr(fLong ? 2 : 1);
                     strText += !option.fHasValue ? "" : option.fFile ? " -r -F" : " -x";
                     strText += option.words.empty() ? "" : " -a " + Quoted(Joined(option.words));
                     strText += " -d " + Quoted(option.strHelp) + "\n";
                 }
             }
         });
    return strText;
}

} // namespace

std::string Completions(const CLI::App& app, const std::string& strShell)
{
    const CCommand root = Described(app, "");
    if (strShell == "bash")
    {
        return Bash(app.get_name(), root);
    }
    if (strShell == "zsh")
    {
        return Zsh(app.get_name(), root);
    }
    if (strShell == "fish")
    {
        return Fish(app.get_name(), root);
    }
    throw CUsageError("there are no completions for " + strShell + " - name bash, zsh or fish.");
}

} // namespace Tarvane
