#include "support/CommandLine.h"

#include "support/Exception.h"
#include "support/ScopeGuard.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/bind/bind.hpp>

#include <cstdlib>
#include <cwctype>
#include <io.h>
#include <process.h>

namespace Language
{

void SplitCommandLine(std::wstring strText, std::list<std::wstring>& tokens)
{
    enum class State
    {
        Between,
        Quoted,
        Word
    };
    boost::trim_left(strText);
    strText += L' '; // closes a last word

    State state = State::Between;
    size_t uiStart = 0;
    for (size_t i = 0; i < strText.size(); ++i)
    {
        const wchar_t c = strText[i];
        switch (state)
        {
        case State::Between:
            if (!std::iswspace(c))
            {
                state = c == L'"' ? State::Quoted : State::Word;
                uiStart = i;
            }
            break;
        case State::Quoted:
            if (c == L'"')
            {
                tokens.push_back(strText.substr(uiStart, i + 1 - uiStart));
                state = State::Between;
            }
            break;
        case State::Word:
            if (std::iswspace(c))
            {
                tokens.push_back(strText.substr(uiStart, i - uiStart));
                state = State::Between;
            }
            break;
        }
    }
}

void LaunchCommandLine(const std::wstring& strCommandLine, bool bWait)
{
    std::list<std::wstring> tokens;
    SplitCommandLine(strCommandLine, tokens);
    if (tokens.empty())
    {
        throw InvalidDataException(L"命令的形式不正确。");
    }
    std::wstring strProgram = tokens.front();
    boost::trim_if(strProgram, boost::is_space() || boost::is_any_of(L"\""));
    if (_waccess(strProgram.c_str(), 0) != 0)
    {
        throw FileNotFoundException(strProgram);
    }

    auto* const ppszArguments = static_cast<const wchar_t**>(std::malloc((tokens.size() + 1) * sizeof(wchar_t*)));
    if (ppszArguments == nullptr)
    {
        throw CrtException("malloc", nullptr);
    }
    const scope_guard guard(boost::bind(&std::free, ppszArguments));

    // The first argument keeps its quotes.
    size_t uiArgument = 0;
    for (const std::wstring& strToken : tokens)
    {
        ppszArguments[uiArgument++] = strToken.c_str();
    }
    ppszArguments[uiArgument] = nullptr;
    // Required: the result is not looked at, and the handle that it is without a wait stays open: a program that does
    // not start is found missing by the next check.
    _wspawnv(bWait ? _P_WAIT : _P_NOWAIT, strProgram.c_str(), ppszArguments);
}

} // namespace Language
