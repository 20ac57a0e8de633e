#ifndef CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H
#define CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H

// How often the process asked operator new for memory so far. A program that links Allocations.cpp has these operators
// replaced; only programs that count should.
unsigned long long AllocationCount();

// The most bytes that operator new had given out at one time since the object was made, beyond those given out then.
// One object at a time.
class AllocationPeak {
 public:
  AllocationPeak();
  unsigned long long Bytes() const;

 private:
  unsigned long long m_before;
};

#endif  // CLIPPARSER_TESTS_SUPPORT_ALLOCATIONS_H
