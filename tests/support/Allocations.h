#ifndef CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H
#define CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H

// How often the process asked operator new for memory so far. A program that links Allocations.cpp has these operators
// replaced; only programs that count should.
unsigned long long AllocationCount();

#endif  // CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H
