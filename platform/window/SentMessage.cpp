#include "platform/window/SentMessage.h"

#include "platform/window/Queue.h"

#include <utility>

namespace kx::window {

SentMessage::SentMessage(std::shared_ptr<Window> target, UINT nMsg, WPARAM wParam, LPARAM lParam,
                         std::shared_ptr<Queue> sender)
    : m_target(std::move(target)),
      m_msg(nMsg),
      m_wParam(wParam),
      m_lParam(lParam),
      m_sender(std::move(sender))
{
}

void SentMessage::Run()
{
    struct AnswerAtEnd
    {
        SentMessage& message;
        LRESULT result;
        ~AnswerAtEnd() { message.Answer(result); }
    } answer{*this, 0};
    answer.result = m_target->Call(m_msg, m_wParam, m_lParam);
}

void SentMessage::Answer(LRESULT nResult) noexcept
{
    m_sender->TakeAnswer(*this, nResult);
}

} // namespace kx::window
