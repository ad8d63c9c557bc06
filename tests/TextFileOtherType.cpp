// Must not compile: text files hold vectors of int and of double only.
#include "HYLBasVectorTextFile.h"

void WriteFloats(HYLBasVector<float> const& vector) {
  HYLBasVectorWrite(vector, "floats.mtx", nullptr, nullptr);
}

HYLBasVector<long long>* ReadWide() { return HYLBasVectorRead<long long>("wide.mtx"); }
