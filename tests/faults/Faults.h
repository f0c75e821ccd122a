// Makes an allocation or a system call of the library fail, and counts the allocations that are not
// released. For one thread at a time.

#ifndef TESTS_FAULTS_H
#define TESTS_FAULTS_H

constexpr char kAllocation[] = "allocation";
constexpr int kShort = -1;  // in place of an errno: the call does only part of its work

struct Fault {
    const char* call;      // kAllocation, or the name of a function of the C library
    int number;            // which call of it, from 1
    int error;             // errno
    bool forGood = false;  // all calls from that one on
};

void arm(const Fault& fault);
void disarm();
// Whether the fault that was armed last has occurred.
bool hasStruck();

// Allocations by the library and the tests that were not released.
long liveAllocations();

#endif
