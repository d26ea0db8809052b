#pragma once
/// Param objects: a function's arguments, remembered by name until someone asks for their text.

#include "diag/LogText.h"

#include <boost/shared_ptr.hpp>
#include <string>
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
