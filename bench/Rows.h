#pragma once

#include <string>
#include <vector>

namespace bench {

// A work, done by the library and by a peer: the median times of both, in nanoseconds.
struct Row
{
    std::string work;
    std::string peer;
    double ours = 0;
    double theirs = 0;

    // How many times faster the library is: only that says anything on a shared machine.
    double Ratio() const { return theirs / ours; }
    // The least ratio that it is meant to reach; 0 for a row that is there to be seen alone.
    double Aim() const;
    // What is known of why it may not.
    const char* WhyShort() const;
    bool IsShort() const { return Ratio() < Aim(); }
};

// What the work of a row is, in a few words.
const char* WhatIs(const std::string& work);

void Print(const std::vector<Row>& rows);
void WriteJson(const std::vector<Row>& rows, const char* pszFile);
// A page with the table, the machine and the date.
void WritePage(const std::vector<Row>& rows, const char* pszFile);

} // namespace bench
