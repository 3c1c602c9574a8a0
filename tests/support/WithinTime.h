#pragma once
// Runs an action that might never end in a child process, so that a test can give up on it.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <string>
#include <typeinfo>

// The text of what the action throws, prefixed "[Expected] " when it is exactly of that class, or
// "nothing thrown", or "timed out" when it hasn't ended within `seconds`.
template <class Expected, class Action>
std::string failureWithin(int seconds, Action&& action)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        std::string text = "nothing thrown";
        try {
            action();
        } catch (const std::exception& error) {
            text = (typeid(error) == typeid(Expected) ? "[Expected] " : "[other] ") + std::string(error.what());
        }
        const ssize_t written = write(pipeEnds[1], text.data(), text.size());
        _exit(written < 0 ? 1 : 0);
    }
    close(pipeEnds[1]);
    std::string text;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd readable{pipeEnds[0], POLLIN, 0};
        if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) == 0) {
            kill(child, SIGKILL);
            text = "timed out";
            break;
        }
        char buffer[512];
        const ssize_t got = read(pipeEnds[0], buffer, sizeof buffer);
        if (got <= 0)
            break;
        text.append(buffer, static_cast<size_t>(got));
    }
    close(pipeEnds[0]);
    waitpid(child, nullptr, 0);
    return text;
}
