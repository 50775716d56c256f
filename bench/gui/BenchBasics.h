#pragma once
// What the benches with a browser view share.
#include <unistd.h>
#include <QApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace pw::bench {

/** The application of a bench, and a folder for its files that goes with it. */
class Application {
  public:
    Application(int& argc, char** argv) : application_(allowed(argc), argv) {
        QApplication::setQuitOnLastWindowClosed(false);
    }

    /** As the system writes it. */
    std::string path(const char* name) const { return folder_.filePath(name).toStdString(); }
    /** Writes a file of the folder; returns its path. */
    std::string put(const char* name, const std::string& bytes) const {
        std::ofstream out(path(name), std::ios::binary);
        if (!(out << bytes)) throw std::runtime_error("the folder of the bench is not writable");
        return path(name);
    }

  private:
    /** The browser engine refuses to start its sandbox as root. */
    static int& allowed(int& argc) {
        if (geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        return argc;
    }

    QApplication application_;
    QTemporaryDir folder_;
};

inline double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/** A row of the table of benches, from times in milliseconds. */
inline void printRow(const char* what, const std::vector<double>& ours,
                     const std::vector<double>& rival, const char* bar) {
    const double a = median(ours);
    const double b = median(rival);
    std::printf("%s\t%.1f ms\t%.1f ms\t%.2f\t%s\n", what, a, b, b > 0 ? a / b : 99, bar);
    std::fflush(stdout);
}

/** A page like those of a manual: headings, paragraphs, links, lists, a table now and then. Of that
 *  many bytes or a few more. */
inline std::string manualPage(std::size_t size) {
    std::string html = "<!DOCTYPE html>\n<html><head><title>Manual</title></head><body>\n";
    for (int i = 0; html.size() < size; ++i) {
        const std::string n = std::to_string(i);
        html += "<h2>Section " + n + "</h2>\n<p>This section tells how <b>part " + n +
                "</b> is set up, what <a href=\"p" + n +
                ".htm\">the other parts</a> expect of it, and what happens when it is left out. "
                "Most sites need only the first of these settings.</p>\n<p>The text goes on for "
                "another paragraph, so that there is something to lay out.</p>\n<!-- " +
                n + " -->\n<ul><li>one item</li><li>and <i>another</i></li></ul>\n";
        if (i % 5 == 0)
            html += "<table border=\"1\"><tr><td>name</td><td>value</td></tr><tr><td>" + n +
                    "</td><td>text</td></tr></table>\n";
    }
    return html + "</body></html>\n";
}

}  // namespace pw::bench
