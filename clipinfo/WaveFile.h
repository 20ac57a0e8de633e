#ifndef CLIPPARSER_CLIPINFO_WAVEFILE_H
#define CLIPPARSER_CLIPINFO_WAVEFILE_H

#include <sndfile.h>

#include <memory>
#include <vector>

#include "clipinfo/ElementKind.h"
#include "clipinfo/OutputFile.h"

// A wave file with PCM samples. Its plain head, which every program reads, counts up to 4 GiB; a longer one is RF64
// (EBU Tech 3306). Written into an output that must outlive it and be a regular file. Functions throw CommandError.
class WaveFile {
 public:
  // More samples than this do not fit a plain head, whose count includes the other parts of the file.
  static constexpr unsigned long long kMostPlain = 0xFFFFFFFF - 0x10000;

  // A long file is RF64; more than kMostPlain bytes in one that is not are refused.
  WaveFile(OutputFile& output, const SoundFormat& format, bool isLong);

  // Appends whole sample frames.
  void Write(const std::vector<unsigned char>& samples);
  // Completes the head. The output is not finished.
  void Close();

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  OutputFile& m_output;
  unsigned long long m_frameSize;
  unsigned long long m_bytesLeft;
  std::unique_ptr<SNDFILE, Closer> m_file;
};

#endif  // CLIPPARSER_CLIPINFO_WAVEFILE_H
