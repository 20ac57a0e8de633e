#include "clipinfo/WaveFile.h"

#include <limits>

WaveFile::WaveFile(OutputFile& output, const SoundFormat& format, bool isLong)
    : m_output(output),
      m_frameSize(format.FrameSize()),
      m_bytesLeft(isLong ? std::numeric_limits<unsigned long long>::max() : kMostPlain) {
  if (output.SeekableDescriptor() < 0) throw CommandError(output.Name() + ": a wave file needs a regular file");
  SF_INFO info = {};
  info.samplerate = format.samplesPerSecond;
  info.channels = format.channels;
  info.format = (isLong ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | (format.bits == 16 ? SF_FORMAT_PCM_16 : SF_FORMAT_PCM_24);
  m_file.reset(sf_open_fd(output.SeekableDescriptor(), SFM_WRITE, &info, SF_FALSE));
  if (!m_file) throw CommandError(output.Name() + ": " + sf_strerror(nullptr));
}

void WaveFile::Write(const std::vector<unsigned char>& samples) {
  m_output.CheckInterrupt();
  if (samples.size() % m_frameSize != 0) throw CommandError("the sound element does not hold whole samples");
  if (samples.size() > m_bytesLeft) throw CommandError(m_output.Name() + ": too long for a wave file");
  m_bytesLeft -= samples.size();
  const auto size = static_cast<sf_count_t>(samples.size());
  if (sf_write_raw(m_file.get(), samples.data(), size) == size) return;
  throw CommandError(m_output.Name() + ": " + sf_strerror(m_file.get()));
}

void WaveFile::Close() {
  const int error = sf_close(m_file.release());
  if (error != 0) throw CommandError(m_output.Name() + ": " + sf_error_number(error));
}
