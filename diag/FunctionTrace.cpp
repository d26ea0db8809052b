#include "diag/FunctionTrace.h"

Param& ParamBase::Clone(Param& result) const
{
    std::string strText;
    ValueText(strText);
    return result = Param(boost::shared_ptr<ParamBase>(new TextParam(Name(), strText)));
}

Param& TextParam::Clone(Param& result) const
{
    return result = Param(boost::shared_ptr<ParamBase>(new TextParam(*this)));
}

std::string ArgumentNames::Next()
{
    const size_t uiComma = m_strRest.find(',');
    const std::string strName(m_strRest.substr(0, uiComma));
    const size_t uiNext = m_strRest.find_first_not_of(", ", uiComma);
    m_strRest = uiNext == std::string_view::npos ? std::string_view() : m_strRest.substr(uiNext);
    return strName;
}

void FunctionTrace::AddHolder(ParamBase* pHolder)
{
    m_params.push_back(Param(boost::shared_ptr<ParamBase>(pHolder)));
}

std::string CallText(const FunctionTrace& trace) noexcept
{
    return QuietText([&] {
        std::string strCall(trace.Name());
        strCall += '(';
        std::string strValue;
        for (const Param& param : trace.Params())
        {
            // Required: the separator follows every argument, the last one too, so that all arguments end alike.
            strCall += '[' + param->Name() + "] = " + param->ValueText(strValue) + ", ";
        }
        strCall += ')';
        return strCall;
    });
}
