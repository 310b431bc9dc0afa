/// Reaches a private data member from a test.
///
/// Some states are answered by the library although none of its operations enters them: a status
/// that another party wrote into a shared state, a stream that failed. No public operation leads
/// there, and the classes shall not grow one for tests. The language itself allows what is done
/// here: the usual access checks do not apply to the names in an explicit instantiation, so a
/// template that is instantiated with a pointer to a private member may hand that pointer out.
///
///     struct Status {                                            // a tag: one for each member
///         friend FutureStatus State::*privateMember(Status);
///     };
///     template struct test::ExposeMember<Status, &State::status>;
///     ...
///     state.*privateMember(Status()) = FutureStatus::Cancelled;
///
/// An explicit instantiation may stand in a program once only, therefore in a source file.
#pragma once

namespace test {

template <typename Tag, auto member>
struct ExposeMember {
    friend decltype(member) privateMember(Tag) { return member; }
};

} // namespace test
