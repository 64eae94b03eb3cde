#pragma once
// The crash-report channel: each crash line can be sent over TCP to a
// report host, so that program errors in the field reach the maintainer.
// It is off unless the profile switches it on:
//   section "CZy", value "m_CrashReport"     (int, default 0 = off)
//   section "CZy", value "m_CrashReportHost" (text, default "" = off)
// The port is always 15000. Connecting and sending are bounded by a
// timeout, so a dead or unreachable host never hangs the program.

#include <string>

class CProfile;

constexpr int kCrashReportPort = 15000;
constexpr int kCrashReportTimeoutMs = 2000;

// Sends the first 255 characters of `line` (without a terminating zero) to
// host:port and closes the connection. True when every byte was sent.
bool SendCrashReport(const std::string& host, int port, const std::string& line,
                     int timeoutMs = kCrashReportTimeoutMs);

// Sends `line` to the configured host on kCrashReportPort when reporting is
// switched on; false when it is off or the send failed.
bool ReportCrashLine(const CProfile& profile, const std::string& line);
