// What a report prints, as text.
#ifndef CAPTURE_H
#define CAPTURE_H

#include <functional>
#include <string>
#include <vector>

/** Runs print with stdout redirected into memory and returns what it wrote. */
std::string Capture(const std::function<void()>& print);

/** The same as lines, without their line feeds. A text that does not end in a line feed fails the test. */
std::vector<std::string> CaptureLines(const std::function<void()>& print);

/** The line that holds the label, without its line feed; empty if there is none, a failed test if there are several. */
std::string LineOf(const std::string& text, const std::string& label);

#endif
