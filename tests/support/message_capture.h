#pragma once
// Records every line that reaches the message singleton while it lives.
#include <QString>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "suite/base/tumessage.h"

class MessageCapture {
public:
    MessageCapture()
        : id_(TUMessage::instance()->attachView([this](char type, const QString &text, const QString &) {
              lines_.emplace_back(type, text.toStdString());
          })) {}
    ~MessageCapture() { TUMessage::instance()->detachView(id_); }
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    const std::vector<std::pair<char, std::string>> &lines() const { return lines_; }
    // Texts of one type ('E' errors, 'I' log lines, 'D' debug traces, ...).
    std::vector<std::string> texts(char type) const {
        std::vector<std::string> out;
        for (const auto &[t, text] : lines_)
            if (t == type) out.push_back(text);
        return out;
    }
    std::vector<std::string> errors() const { return texts('E'); }
    bool contains(const std::string &text) const {
        return std::any_of(lines_.begin(), lines_.end(), [&](const auto &line) { return line.second == text; });
    }
    // Internal assertions logged while the capture lived.
    int assertions() const {
        int n = 0;
        for (const auto &[t, s] : lines_) n += s.starts_with("Internal assertion error detected (");
        return n;
    }
    void clear() { lines_.clear(); }

private:
    std::vector<std::pair<char, std::string>> lines_;  // before id_: the view may write at once
    int id_;
};
