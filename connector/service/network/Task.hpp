/// What the network thread has done by another thread.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace connector::service {

/// Work for another thread, and what the network thread does with its result.
class Task {
public:
    virtual ~Task() = default;

    /// Runs on a worker. Keeps its failures for `finish`.
    virtual void work() noexcept = 0;

    /// Runs on the network thread afterwards.
    virtual void finish() noexcept = 0;

private:
    friend class TaskList;
    std::unique_ptr<Task> next;
};

/// Tasks in the order in which they were added. Adding and removing need no memory, so that no task
/// and no result is lost when there is none.
class TaskList {
public:
    TaskList() = default;
    ~TaskList() { clear(); }
    TaskList(const TaskList&) = delete;
    TaskList& operator=(const TaskList&) = delete;

    bool isEmpty() const { return first == nullptr; }
    std::size_t size() const { return count; }

    void add(std::unique_ptr<Task> task) noexcept {
        Task* const newLast = task.get();
        (isEmpty() ? first : last->next) = std::move(task);
        last = newLast;
        ++count;
    }

    /// Moves all of the other list behind the tasks of this one.
    void addAll(TaskList& other) noexcept {
        if (other.isEmpty())
            return;
        (isEmpty() ? first : last->next) = std::move(other.first);
        last = other.last;
        count += std::exchange(other.count, 0);
    }

    /// @return the first task; there is one
    std::unique_ptr<Task> removeFirst() noexcept {
        std::unique_ptr<Task> task = std::move(first);
        first = std::move(task->next);
        --count;
        return task;
    }

    /// One by one: a destructor that destroys its successor would need a stack of any size.
    void clear() noexcept {
        while (!isEmpty())
            removeFirst();
    }

private:
    std::unique_ptr<Task> first;
    Task* last = nullptr; // if there is a first one
    std::size_t count = 0;
};

} // namespace connector::service
