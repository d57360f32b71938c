#include "programs/veskoWarning/WarningProgram.h"

#include <cstdlib>
#include <string>

#include "Base/qvOS/Env.h"

namespace veskoWarning {

using qvObrixBase::VeskoWarningParams;
using qvString::CString;

VeskoWarningParams withButtons(VeskoWarningParams params) {
    if (params.buttons.empty())
        params.buttons.push_back("OK");
    return params;
}

namespace {

// A whole decimal number in [lo, hi], nothing else on the line.
bool parseIndex(const std::string& text, long lo, long hi, long& value) {
    // strtol alone would also take leading blanks and a plus sign.
    if (text.empty() || text.size() > 10 || !(text[0] == '-' || (text[0] >= '0' && text[0] <= '9')))
        return false;
    char* end = nullptr;
    value = std::strtol(text.c_str(), &end, 10);
    return end == text.c_str() + text.size() && value >= lo && value <= hi;
}

void writeAnswer(std::FILE* out, int answer) {
    std::fprintf(out, "%d\n", answer);
    std::fflush(out);
}

} // namespace

bool scriptedAnswer(const VeskoWarningParams& params, const CString& answerText, int& answer,
                    CString& error) {
    for (std::size_t i = 0; i < params.buttons.size(); ++i) {
        if (params.buttons[i] == answerText) {
            answer = static_cast<int>(i);
            return true;
        }
    }
    long index = 0;
    if (parseIndex(answerText, -1, static_cast<long>(params.buttons.size()) - 1, index)) {
        answer = static_cast<int>(index);
        return true;
    }
    error = CString(kAnswerVariable) + "=\"" + answerText + "\" names no button of this warning";
    return false;
}

CString warningText(const VeskoWarningParams& params) {
    CString text = (params.title.empty() ? CString("Warning") : params.title) + "\n";
    for (const CString& line : params.lines)
        text += line + "\n";
    for (const CString& detail : params.details)
        text += "    " + detail + "\n";
    for (std::size_t i = 0; i < params.buttons.size(); ++i)
        text += "  " + std::to_string(i + 1) + ") " + params.buttons[i] + "\n";
    return text;
}

int askOnTerminal(const VeskoWarningParams& params, std::FILE* in, std::FILE* out) {
    std::fputs(warningText(params).c_str(), out);
    const long count = static_cast<long>(params.buttons.size());
    for (int attempt = 0; attempt < 20; ++attempt) {
        std::fprintf(out, "Choose 1-%ld [1]: ", count);
        std::fflush(out);
        std::string line;
        int c;
        while ((c = std::fgetc(in)) != EOF && c != '\n')
            line += static_cast<char>(c);
        if (c == EOF && line.empty())
            break;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        long number = 0;
        if (line.empty())
            return 0;
        if (parseIndex(line, 1, count, number))
            return static_cast<int>(number - 1);
        if (c == EOF)
            break;
    }
    std::fputs("\n", out);
    return -1;
}

int run(const VeskoWarningParams& original, Frontend frontend, DialogFn dialog,
        std::FILE* answerOut, std::FILE* log) {
    const VeskoWarningParams params = withButtons(original);
    int answer = 0;

    // Automation first: a scripted answer never waits for anyone, but still leaves the
    // warning in the log so that a test run shows what was asked.
    CString answerText;
    if (qvOS::GetEnv(kAnswerVariable, answerText)) {
        CString error;
        if (!scriptedAnswer(params, answerText, answer, error)) {
            std::fprintf(log, "veskoWarning: %s\n", error.c_str());
            return 2;
        }
        std::fprintf(log, "%sveskoWarning: answered %d by %s\n", warningText(params).c_str(),
                     answer, kAnswerVariable);
        writeAnswer(answerOut, answer);
        return 0;
    }

    if (frontend == Frontend::Auto || frontend == Frontend::Dialog) {
        if (dialog && dialog(params, answer)) {
            writeAnswer(answerOut, answer);
            return 0;
        }
        if (frontend == Frontend::Dialog) {
            std::fprintf(log, "veskoWarning: no desktop to show the dialog on\n");
            return 2;
        }
    }
    if (frontend == Frontend::Auto || frontend == Frontend::Terminal) {
        std::FILE* in = nullptr;
        std::FILE* out = nullptr;
        if (openTerminal(in, out)) {
            answer = askOnTerminal(params, in, out);
            std::fclose(in);
            std::fclose(out);
            writeAnswer(answerOut, answer);
            return 0;
        }
        if (frontend == Frontend::Terminal) {
            std::fprintf(log, "veskoWarning: no terminal to ask on\n");
            return 2;
        }
    }
    // Nobody to ask (a service, a CI job): the warning must not be lost and the caller must
    // not hang, so it is logged and answered with the first button, the dialog's default.
    std::fprintf(log, "%sveskoWarning: nobody to answer; answering 1) %s\n",
                 warningText(params).c_str(), params.buttons[0].c_str());
    writeAnswer(answerOut, 0);
    return 0;
}

} // namespace veskoWarning
