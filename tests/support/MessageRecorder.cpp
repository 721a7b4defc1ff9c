#include "support/MessageRecorder.h"

int MessageRecorder::Show(void*, const CString& text, const CString& caption, unsigned flags) {
    m_messages.push_back({text, caption, flags});
    if (m_answers.empty())
        return (flags & 0xF) == MB_YESNO ? IDNO : IDOK;
    int answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

std::vector<CString> MessageRecorder::Texts() const {
    std::vector<CString> texts;
    for (const auto& m : m_messages)
        texts.push_back(m.text);
    return texts;
}
