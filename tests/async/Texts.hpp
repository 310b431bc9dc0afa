/// The exact texts of the exceptions. They are repeated here, so that a change in the library fails
/// the tests.
#pragma once

namespace test {

inline constexpr const char* alreadyResolved = "Promise already resolved.";
inline constexpr const char* promiseNotValid = "Promise state isn't valid!";
inline constexpr const char* futureAlreadyReturned = "Promise already returned a future.";
inline constexpr const char* abandoned = "Promise destroyed before it provided a value.";
inline constexpr const char* futureNotValid = "Future state isn't valid!";
inline constexpr const char* alreadyTaken =
    "Future already returned it's value or has an associated continuation.";
inline constexpr const char* cancelled = "Future has been cancelled.";
inline constexpr const char* invalidStatus = "Invalid Future state reached.";
inline constexpr const char* nullException = "A promise cannot be failed with a null exception.";
inline constexpr const char* nullContinuation = "A null continuation cannot be attached.";
inline constexpr const char* secondSubscription = "Only one subscription allowed.";
inline constexpr const char* nullSubscriber = "A null subscriber cannot be subscribed.";

} // namespace test
