#pragma once
/// FunctionTrace: the local object at the head of a function, which remembers the function's arguments by name.

#include "diag/Param.h"

#include <list>
#include <string>

/// Holds a function's name and its list of arguments. It writes nothing by itself; CallText renders it.
/// It lives in the traced function's frame and dies before the trace scope closes, so that its holders may point at the
/// function's own arguments.
class FunctionTrace
{
public:
    /// @param pszName the function's name, a literal: only the address is kept.
    explicit FunctionTrace(const char* pszName) noexcept : m_pszName(pszName) {}
    FunctionTrace(const FunctionTrace&) = delete;
    FunctionTrace& operator=(const FunctionTrace&) = delete;

    /// Remembers one argument. Callers guard this with IsFatalEnabled.
    /// @param pszName the argument's name.
    /// @param pValue  address of the argument, which must outlive this object; read when the text is made, not now.
    template <typename T>
    void AddParam(const char* pszName, const T* pValue)
    {
        m_params.push_back(Param(boost::shared_ptr<ParamBase>(new ValueParam<T>(pszName, pValue))));
    }

    /// Remembers an array.
    /// @param ppValues address of the pointer to it, which must outlive this object, as must the array.
    /// @param uiCount  entries.
    template <typename T>
    void AddParam(const char* pszName, const T* const* ppValues, size_t uiCount)
    {
        m_params.push_back(Param(boost::shared_ptr<ParamBase>(new ArrayParam<T>(pszName, ppValues, uiCount))));
    }

    const char* Name() const noexcept { return m_pszName; }
    const std::list<Param>& Params() const noexcept { return m_params; }

private:
    const char* m_pszName;
    std::list<Param> m_params;
};

/// The call line: the function's name and, in brackets, "[name] = value, " for each argument. The separator also
/// follows the last one.
std::string CallText(const FunctionTrace& trace);
