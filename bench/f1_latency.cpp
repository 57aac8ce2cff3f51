// From a finish key to its journal entry, measured from outside the program as a timekeeper's
// keyboard would press it: F1 sent through XTest, the journal watched with inotify. And the
// program's start-up, from its launch to its main window mapped on the screen.
//   f1_latency <journal file> [presses] [pause ms]
//   f1_latency --start-up <log file> <program>   prints the milliseconds and the program's pid
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace
{

double nowMs()
{
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// Reads every event waiting on the watch; true when one came within timeoutMs.
bool drain(int fd, int timeoutMs)
{
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, timeoutMs) <= 0)
        return false;
    char buffer[4096];
    while (read(fd, buffer, sizeof buffer) > 0) {
    }
    return true;
}

// Launches the program (its output to log) and waits for its main window, "Marvolendo", to be
// mapped: the root window tells every map of a top-level window as it happens.
int startUp(Display* display, const char* log, const char* program)
{
    const Window root = DefaultRootWindow(display);
    XSelectInput(display, root, SubstructureNotifyMask);
    XSync(display, False);
    const double start = nowMs();
    const pid_t pid = fork();
    if (pid < 0)
        return 1;
    if (pid == 0) {
        const int out = open(log, O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out >= 0) {
            dup2(out, STDOUT_FILENO);
            dup2(out, STDERR_FILENO);
        }
        execl(program, program, static_cast<char*>(nullptr));
        _exit(127);
    }
    while (nowMs() - start < 20000) {
        if (XPending(display) == 0) {
            pollfd p{ConnectionNumber(display), POLLIN, 0};
            poll(&p, 1, 100);
            continue;
        }
        XEvent event;
        XNextEvent(display, &event);
        if (event.type != MapNotify)
            continue;
        char* name = nullptr;
        const bool main = XFetchName(display, event.xmap.window, &name) && name &&
                          std::strcmp(name, "Marvolendo") == 0;
        if (name)
            XFree(name);
        if (main) {
            std::printf("%.0f %d\n", nowMs() - start, static_cast<int>(pid));
            return 0;
        }
    }
    std::printf("-1 %d\n", static_cast<int>(pid));
    return 1;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc == 4 && std::strcmp(argv[1], "--start-up") == 0) {
        Display* display = XOpenDisplay(nullptr);
        if (!display) {
            std::fprintf(stderr, "no X display\n");
            return 1;
        }
        const int result = startUp(display, argv[2], argv[3]);
        XCloseDisplay(display);
        return result;
    }
    if (argc < 2) {
        std::fprintf(stderr, "usage: f1_latency <journal file> [presses] [pause ms]\n");
        return 2;
    }
    const int presses = argc > 2 ? std::atoi(argv[2]) : 200;
    const int pauseMs = argc > 3 ? std::atoi(argv[3]) : 120;
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "no X display\n");
        return 1;
    }
    const int fd = inotify_init1(IN_NONBLOCK);
    if (fd < 0 || inotify_add_watch(fd, argv[1], IN_MODIFY) < 0) {
        std::fprintf(stderr, "cannot watch %s\n", argv[1]);
        return 1;
    }
    const KeyCode f1 = XKeysymToKeycode(display, XK_F1);

    std::vector<double> ms;
    int lost = 0;
    for (int i = 0; i < presses; ++i) {
        drain(fd, 0);
        const double start = nowMs();
        XTestFakeKeyEvent(display, f1, True, CurrentTime);
        XTestFakeKeyEvent(display, f1, False, CurrentTime);
        XFlush(display);
        if (drain(fd, 1000))
            ms.push_back(nowMs() - start);
        else
            ++lost;
        usleep(static_cast<useconds_t>(pauseMs) * 1000);
    }
    XCloseDisplay(display);
    if (ms.empty()) {
        std::fprintf(stderr, "no journal entry came after %d presses\n", presses);
        return 1;
    }
    std::sort(ms.begin(), ms.end());
    const double median = ms[ms.size() / 2];
    const double p90 = ms[ms.size() * 9 / 10];
    std::printf("F1 to its journal entry, %zu presses: median %.2f ms  p90 %.2f ms  worst %.2f ms"
                "  (target median < 3, worst < 10) %s\n",
                ms.size(), median, p90, ms.back(), median < 3 && ms.back() < 10 ? "ok" : "SLOW");
    if (lost > 0)
        std::printf("%d presses left no journal entry within a second\n", lost);
    return lost > 0 ? 1 : 0;
}
