#pragma once
// Records every message box and answers from a script (IDOK when the script is empty).

#include "platform/MessageBox.h"

#include <deque>
#include <vector>

struct RecordedMessage {
    CString text;
    CString caption;
    unsigned flags = 0;
};

class MessageRecorder : public IMessageBoxHandler {
public:
    MessageRecorder() : m_scope(this) {}
    int Show(void* owner, const CString& text, const CString& caption, unsigned flags) override;

    void Answer(int answer) { m_answers.push_back(answer); }
    const std::vector<RecordedMessage>& Messages() const { return m_messages; }
    std::vector<CString> Texts() const;
    void Clear() { m_messages.clear(); }

private:
    std::vector<RecordedMessage> m_messages;
    std::deque<int> m_answers;
    MessageBoxHandlerScope m_scope;
};
