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

std::string CallText(const FunctionTrace& trace)
{
    std::string strCall(trace.Name());
    strCall += '(';
    std::string strValue;
    for (const Param& param : trace.Params())
    {
        // Required: the separator follows every argument, the last one too.
        strCall += '[' + param->Name() + "] = " + param->ValueText(strValue) + ", ";
    }
    strCall += ')';
    return strCall;
}
