#pragma once

#include "platform/waitcondition.h"

#include <functional>
#include <memory>
#include <utility>

namespace Zorvan {

/// What one thread asks another, shared by both: whoever goes first leaves it intact for the other.
///
/// The first answer counts.
template <typename Value>
class Answer
{
public:
    /// \a preset is what the waiter gets if nobody answers; see PendingAnswer.
    explicit Answer(Value preset)
        : m_value(std::move(preset))
    {}

    void give(Value value)
    {
        {
            const platform::Locked guard(m_lock);
            if (m_isGiven)
                return;
            m_isGiven = true;
            m_value = std::move(value);
        }
        m_given.wakeOne();
    }

    /// Waits without a time limit. Only one thread waits, and once.
    Value wait()
    {
        m_given.wait();
        const platform::Locked guard(m_lock);
        return m_value;
    }

    /// Ends the wait with the preset unless an answer was given.
    void giveUp()
    {
        Value preset = [this] {
            const platform::Locked guard(m_lock);
            return m_value;
        }();
        give(std::move(preset));
    }

private:
    KLVWaitCondition m_given;
    platform::Mutex m_lock;
    bool m_isGiven ZORVAN_GUARDED_BY(m_lock) = false;
    Value m_value ZORVAN_GUARDED_BY(m_lock);
};

/// The end of an Answer that a request carries: a request that is destroyed unanswered, because the queue or
/// the event loop is gone, ends the wait. May be empty: nobody waits.
template <typename Value>
class PendingAnswer
{
public:
    PendingAnswer() = default;
    ~PendingAnswer()
    {
        if (m_answer)
            m_answer->giveUp();
    }
    PendingAnswer(const PendingAnswer &) = delete;
    PendingAnswer &operator=(const PendingAnswer &) = delete;

    void give(Value value)
    {
        if (m_answer)
            m_answer->give(std::move(value));
    }

    void carry(std::shared_ptr<Answer<Value>> answer) { m_answer = std::move(answer); }
    /// What ends the wait in the place of a user who does not answer.
    [[nodiscard]] std::function<void()> giver() const
    {
        return [answer = m_answer] {
            if (answer)
                answer->giveUp();
        };
    }

private:
    std::shared_ptr<Answer<Value>> m_answer;
};

} // namespace Zorvan
