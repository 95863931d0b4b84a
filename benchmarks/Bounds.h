#pragma once

/// What our side of a row may cost, as a multiple of the other's, and why it is just that.
struct Bound {
    double most;
    const char* reason;
};

/// All of them in one place: scripts/bench and docs/performance.md take them from here.
namespace bounds {

inline constexpr Bound sameEncoder{1.05, "the same library; 5 % for the way to it"};
inline constexpr Bound sameDecoder{1.05, "the same library, or one of the same kind"};
inline constexpr Bound copiedImageAndPasses{4.0 / 3, "a third for start, checksums and verdicts"};
inline constexpr Bound copiedImage{2.4, "the copy, the next row's passes for 0.8 of it, and a third of both"};
inline constexpr Bound copiedInWindow{2.65, "the worker's, and a quarter of a copy for the map and the log"};
inline constexpr Bound encodedInWindow{1.10, "the worker's 5 %, and 5 % for the map and the log"};
inline constexpr Bound windowWall{1.05, "5 % for the map and the log"};
inline constexpr Bound stall{1.0, "more is felt"};
inline constexpr Bound imageMemory{1.1, "the samples of the track, once, and the program"};
inline constexpr Bound discCommands{1.0, "not one more than the method has"};
inline constexpr Bound discSpeed{1.0, "three times as fast as the fastest drive"};
inline constexpr Bound discPeer{1.0, "no slower than another ripper"};
inline constexpr Bound watchdog{1.0, "a fiftieth of the watchdog's step"};
inline constexpr Bound checksums{2.0, "half of the memory's throughput"};
inline constexpr Bound meter{1.0, "no slower than the library that others use"};
inline constexpr Bound oversampler{1.0, "no slower than its definition"};
inline constexpr Bound oneBitFilter{1.0 / 3, "a third of its definition"};
inline constexpr Bound folder{1.10, "the same library; 10 % for the dialog and its start"};
inline constexpr Bound conversionMemory{1.0, "the same, however long the file"};
inline constexpr Bound startBesideBare{5.0, "five pages, and the libraries of most codecs"};
inline constexpr Bound startOfWindow{1.0, "a start that nobody waits for"};

} // namespace bounds
