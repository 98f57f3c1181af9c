#include "tools/mirqos-logview/Session.h"

#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

namespace {

// An event is lost where a writer ends before it sets it.
constexpr DWORD kLookInterval = 250;  // ms

}  // namespace

Session::Session(const Command& command, Output& output)
    : m_command(command),
      m_output(output),
      m_held([&output](const std::string& text) { output.Note(text); }) {
    for (const LOGUTILS::WideString& executable : command.executables) {
        m_channels.push_back(std::make_unique<WatchedChannel>(executable));
    }
    if (!command.breakText.empty()) {
        Break(command.breakText, command.breakProcessId, command.breakThreadId);
    }
}

void Session::Run(HANDLE stop) {
    std::vector<HANDLE> events = {stop, m_input.Event(), m_held.HitEvent()};
    for (const auto& channel : m_channels) {
        events.push_back(channel->Event());
    }
    constexpr DWORD kHitEvent = 2;
    ULONGLONG lastLook = 0;
    while (!m_ended && m_output.IsWanted() && WaitForSingleObject(stop, 0) == WAIT_TIMEOUT) {
        const DWORD wait = WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(),
                                                  FALSE, kLookInterval);
        if (wait == WAIT_FAILED) {
            throw Failure(ExitCode::SystemRefused,
                          "cannot wait: error " + std::to_string(GetLastError()));
        }
        ReadChannels();
        if (wait == WAIT_OBJECT_0 + kHitEvent || GetTickCount64() - lastLook >= kLookInterval) {
            LookWhoIsHeld();
            lastLook = GetTickCount64();
        }
        // one a round: more may come without end, and lines and `stop` have their turn in between
        if (const auto line = m_input.Next()) {
            Do(ReadInputCommand(*line));
        }
        m_output.Flush();
    }
    ReadChannels();  // what was written before the end was asked for
    m_output.Flush();
}

void Session::ReadChannels() {
    for (const auto& channel : m_channels) {
        const NewMessages found = channel->Read();
        if (found.lost > 0) {
            m_output.Note(std::string(found.lostMore ? "more than " : "") +
                          Tool::CountOf(found.lost, "line") + " of " +
                          Tool::Printable(Tool::ToUtf8(channel->Executable())) +
                          " lost: they came faster than they could be shown");
        }
        for (const auto& message : found.messages) {
            m_held.Remember(*message);
            if (IsShown(m_command.filter, *message)) {
                m_output.Show(*message);
            }
        }
    }
}

void Session::LookWhoIsHeld() {
    m_held.Look([this] { ReadChannels(); });
}

void Session::Do(const InputCommand& command) {
    switch (command.action) {
        case InputCommand::Action::Nothing:
            break;
        case InputCommand::Action::Break:
            Break(command.text, command.processId, command.threadId);
            break;
        case InputCommand::Action::List:
            m_output.Answer(m_held.Breakpoints());
            break;
        case InputCommand::Action::Remove:
            m_output.Answer(m_held.Remove(command.number) ? "removed\n"
                                                          : "there is no such breakpoint\n");
            break;
        case InputCommand::Action::Held:
            LookWhoIsHeld();
            m_output.Answer(m_held.Held());
            break;
        case InputCommand::Action::Release:
            if (!m_held.Release(command.number)) {
                m_output.Answer("no such thread is held\n");
            }
            break;
        case InputCommand::Action::ReleaseAll:
            LookWhoIsHeld();
            if (m_held.ReleaseAll() == 0) {
                m_output.Answer(m_held.Held());
            }
            break;
        case InputCommand::Action::Help:
            m_output.Answer(kInputHelp);
            break;
        case InputCommand::Action::Quit:
            m_ended = true;
            break;
        case InputCommand::Action::Wrong:
            m_output.Answer(command.text + "\n");
            break;
    }
}

void Session::Break(const std::string& text, std::uint32_t processId, std::uint32_t threadId) {
    for (const LOGUTILS::WideString& executable : m_command.executables) {
        const std::size_t number =
            m_held.Add({executable, Tool::ToWide(text), processId, threadId});
        m_output.Answer(number == 0 ? "there is no room for another breakpoint\n"
                                    : "breakpoint " + std::to_string(number) + " set in " +
                                          Tool::Printable(Tool::ToUtf8(executable)) + "\n");
    }
}

}  // namespace Mirqos::LogView
