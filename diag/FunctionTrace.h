#pragma once
/// A function's arguments, remembered by name until someone asks for their text: the holders of one argument each, and
/// the object at the head of a function that keeps their list.

#include "diag/CallStack.h"
#include "diag/LogText.h"

#include <boost/shared_ptr.hpp>

#include <list>
#include <string>
#include <string_view>
#include <utility>

class Param;

/// Abstract holder of one argument.
class ParamBase
{
public:
    explicit ParamBase(std::string strName) : m_strName(std::move(strName)) {}
    virtual ~ParamBase() = default;
    const std::string& Name() const noexcept { return m_strName; }

    /// Writes the value's text into strText and returns it.
    virtual std::string& ValueText(std::string& strText) const = 0;
    /// Makes a snapshot of the value's text as it is now, under the same name, which no longer depends on the argument.
    virtual Param& Clone(Param& result) const;

private:
    std::string m_strName;
};

/// A snapshot: an argument's name and its text at one moment.
class TextParam : public ParamBase
{
public:
    TextParam(std::string strName, std::string strText) : ParamBase(std::move(strName)), m_strText(std::move(strText))
    {}
    std::string& ValueText(std::string& strText) const override { return strText = m_strText; }
    Param& Clone(Param& result) const override;

private:
    std::string m_strText;
};

/// Holder of a typed argument by address; T is anything that ArgumentText takes.
template <typename T>
class ValueParam : public ParamBase
{
public:
    ValueParam(std::string strName, const T* pValue) : ParamBase(std::move(strName)), m_pValue(pValue) {}
    std::string& ValueText(std::string& strText) const override { return strText = ArgumentText(*m_pValue); }

private:
    const T* m_pValue;
};

/// Holder of an array by the address of its pointer; the count is taken by value. T is anything that ArgumentText
/// takes.
template <typename T>
class ArrayParam : public ParamBase
{
public:
    ArrayParam(std::string strName, const T* const* ppValues, size_t uiCount)
        : ParamBase(std::move(strName)), m_ppValues(ppValues), m_uiCount(uiCount)
    {}
    /// "[" and "]" with the entries between them, ", " between two.
    std::string& ValueText(std::string& strText) const override
    {
        strText = "[";
        for (size_t i = 0; i < m_uiCount; ++i)
        {
            strText += (i == 0 ? "" : ", ") + ArgumentText((*m_ppValues)[i]);
        }
        return strText += "]";
    }

private:
    const T* const* m_ppValues;
    size_t m_uiCount;
};

/// Handle to a holder; copies share it.
class Param
{
public:
    Param() = default;
    explicit Param(boost::shared_ptr<ParamBase> pHolder) : m_pHolder(std::move(pHolder)) {}
    const ParamBase* operator->() const noexcept { return m_pHolder.get(); }

private:
    boost::shared_ptr<ParamBase> m_pHolder;
};

/// Takes a list of names apart, as a macro makes it of its arguments: "pdmIn, pdmOut".
class ArgumentNames
{
public:
    /// @param pszNames borrowed; a literal.
    explicit ArgumentNames(const char* pszNames) noexcept : m_strRest(pszNames) {}
    /// The next name.
    std::string Next();

private:
    std::string_view m_strRest;
};

/// Holds a function's name and its list of arguments. It writes nothing by itself; CallText renders it. Its calls keep
/// the rules of the log surface (diag/Log.h): an argument for which there is no memory is missing from the list.
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
    void AddParam(const char* pszName, const T* pValue) noexcept
    {
        Quietly([=] { AddHolder(new ValueParam<T>(pszName, pValue)); });
    }

    /// Remembers an array.
    /// @param ppValues address of the pointer to it, which must outlive this object, as must the array.
    /// @param uiCount  entries.
    template <typename T>
    void AddParam(const char* pszName, const T* const* ppValues, size_t uiCount) noexcept
    {
        Quietly([=] { AddHolder(new ArrayParam<T>(pszName, ppValues, uiCount)); });
    }

    /// Remembers several arguments.
    /// @param pszNames their names, with a comma and blanks between two of them.
    /// @param values   the arguments themselves, kept by address.
    template <typename... T>
    void AddParams(const char* pszNames, const T&... values) noexcept
    {
        Quietly([&] {
            ArgumentNames names(pszNames);
            (AddHolder(new ValueParam<T>(names.Next(), &values)), ...);
        });
    }

    const char* Name() const noexcept { return m_pszName; }
    const std::list<Param>& Params() const noexcept { return m_params; }

private:
    /// Takes a holder over. In one place for all types, which keeps the call sites small.
    void AddHolder(ParamBase* pHolder);

    const char* m_pszName;
    std::list<Param> m_params;
};

/// The object at the head of every own function: opens the function's trace scope, then its FunctionTrace, and ends
/// them in the reverse order on every way out.
/// Required: also when an exception leaves the function, an entry point included. A scope that stayed open would give
/// its category to all that the thread logs from then on.
class FunctionScope : private TraceScope, public FunctionTrace
{
public:
    /// @param pszName the function's name in the call stack and in its call line, a literal.
    explicit FunctionScope(const char* pszName) noexcept : TraceScope(pszName), FunctionTrace(pszName) {}
};

/// The call line: the function's name and, in brackets, "[name] = value, " for each argument. The separator also
/// follows the last one. Keeps the rules of the log surface; without memory for it the line is empty.
std::string CallText(const FunctionTrace& trace) noexcept;
