#pragma once

#include <memory>

/// What a thread body is wrapped in: a callable without arguments that can be copied.
template <class Result>
class function_obj {
public:
    virtual ~function_obj() = default;
    virtual Result call() = 0;
};

/// A copyable callable without arguments. Calling an empty one gives Result().
template <class Result>
class function {
public:
    function() = default;
    explicit function(std::shared_ptr<function_obj<Result>> object) : m_pObject(std::move(object)) {}

    /// Wraps a plain function.
    function(Result (*plain)()); // NOLINT(google-explicit-constructor): GThread::emptyFun is passed as it stands

    Result operator()() const { return m_pObject ? m_pObject->call() : Result(); }

private:
    std::shared_ptr<function_obj<Result>> m_pObject;
};

namespace sensorhost {

template <class Result>
class PlainFunction final : public function_obj<Result> {
public:
    explicit PlainFunction(Result (*plain)()) : m_pPlain(plain) {}
    Result call() override { return m_pPlain(); }

private:
    Result (*m_pPlain)();
};

template <class Class, class Result>
class MemberFunction final : public function_obj<Result> {
public:
    MemberFunction(Class* object, Result (Class::*member)()) : m_pObject(object), m_pMember(member) {}
    Result call() override { return (m_pObject->*m_pMember)(); }

private:
    Class* m_pObject;
    Result (Class::*m_pMember)();
};

} // namespace sensorhost

template <class Result>
function<Result>::function(Result (*plain)()) : m_pObject(std::make_shared<sensorhost::PlainFunction<Result>>(plain)) {}

/// Wraps a member function of an object that outlives the result.
template <class Class, class Result>
function<Result> bind(Class* object, Result (Class::*member)()) {
    return function<Result>(std::make_shared<sensorhost::MemberFunction<Class, Result>>(object, member));
}
