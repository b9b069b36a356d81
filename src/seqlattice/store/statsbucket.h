// StatsBucket keeps the statistics of the time gaps observed for one pattern:
// how many gaps, their sum, smallest and largest. A bucket belongs to the
// SequenceCounter that holds it and is destroyed with it, through the virtual
// destructor (the class's only virtual operation, so that hosts may derive
// their own buckets).
//
// The first gap is recorded with InitialGap, every later one with UpdateGap;
// UpdateGap on a fresh bucket keeps 0.0 inside the minimum and maximum, since
// it does not know that no gap came before. Not safe for concurrent use.
#ifndef SEQLATTICE_STORE_STATSBUCKET_H_
#define SEQLATTICE_STORE_STATSBUCKET_H_

#include <fstream>
#include <ostream>

namespace SEQUENCE_NAMESPACE_800 {

class StatsBucket {
 public:
  // All four statistics 0.0.
  StatsBucket();
  virtual ~StatsBucket();

  // Starts the statistics with the first gap g: one gap, sum = min = max = g.
  void InitialGap(double g);
  // Adds one more gap g.
  void UpdateGap(double g);

  double GetNOfGaps() const;
  double GetSumOfGaps() const;
  double GetMinOfGaps() const;
  double GetMaxOfGaps() const;
  // Sum divided by number of gaps; 0.0 while no gap has been recorded.
  double GetMeanOfGaps() const;

  // Binary record and XML element of the bucket (implemented in io/).
  long writeObject(std::fstream& out) const;
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;
  long readObjectXML(std::ifstream& in);

 private:
  // The number of gaps is a count, kept as a double like the other three.
  double nOfGaps;
  double sumOfGaps;
  double minOfGaps;
  double maxOfGaps;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_STATSBUCKET_H_
