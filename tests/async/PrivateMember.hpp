/// Gives a test access to a private data member.
///
/// The library handles some states that none of its operations enters: a status that foreign code
/// has written, a stream that failed. The classes should not get an operation for tests only. The
/// language allows what is done here: access checks do not apply to the names in an explicit
/// instantiation, so a template that is instantiated with a pointer to a private member may return
/// that pointer.
///
///     struct Status {                                            // a tag: one for each member
///         friend FutureStatus State::*privateMember(Status);
///     };
///     template struct test::ExposeMember<Status, &State::status>;
///     ...
///     state.*privateMember(Status()) = FutureStatus::Cancelled;
///
/// A program may contain an explicit instantiation only once, so it belongs into a source file.
#pragma once

namespace test {

template <typename Tag, auto member>
struct ExposeMember {
    friend decltype(member) privateMember(Tag) { return member; }
};

} // namespace test
