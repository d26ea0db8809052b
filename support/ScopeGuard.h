#pragma once

#include <boost/shared_ptr.hpp>

namespace Language
{

/// Runs one bound call when its scope ends, normally or by an exception. It can't be dismissed.
///
///     const scope_guard guard(boost::bind(&CloseHandle, hToken));
class scope_guard
{
public:
    /// Without memory for the call it runs at once, and std::bad_alloc is thrown.
    /// @param call what boost::bind gives; its result is dropped.
    template <typename Call>
    explicit scope_guard(Call call)
    try : m_pCaller(new caller<Call>(call))
    {}
    catch (...)
    {
        call();
    }
    ~scope_guard() { (*m_pCaller)(); }
    scope_guard(const scope_guard&) = delete;
    scope_guard& operator=(const scope_guard&) = delete;

private:
    /// A call with its type hidden. No virtual destructor: the shared pointer knows the type that it was made from.
    class base_caller
    {
    public:
        virtual void operator()() = 0;

    protected:
        ~base_caller() = default;
    };

    template <typename Call>
    class caller final : public base_caller
    {
    public:
        explicit caller(Call call) : m_call(call) {}
        void operator()() override { m_call(); }

    private:
        Call m_call;
    };

    boost::shared_ptr<base_caller> m_pCaller;
};

} // namespace Language
