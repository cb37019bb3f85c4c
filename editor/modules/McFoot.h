#pragma once

/// A value from 0 to 255 that follows the frequency of a signal, as of a pedal at the sound input: the scale
/// is linear in the period. The measuring loop is empty, so the frequency stays what is stored here.
class McFoot
{
public:
    McFoot() = default;
    McFoot(const McFoot&) = delete;
    McFoot& operator=(const McFoot&) = delete;
    /// Ends the measuring process, if there is one.
    ~McFoot();

    /// 0 at `fmin` and below, 255 at `fmax` and above, and where the frequency is not a number.
    int getValue() const;
    float getFrequency(int) { return 1000.0f; }

    /// The period of a signal in samples: the mean distance of the peaks above a third of the largest
    /// magnitude, or `count` if there are fewer than two.
    ///
    /// samples  two channels side by side, of which the second one counts
    /// count    pairs, of which there must be one more: kept: a climb that reaches the last pair is compared
    ///          with the one behind it, which belongs to the caller's ring of samples
    ///
    /// kept: each sample of a falling edge above the third counts as a peak as well. The scale of the pedal
    /// is set up with these counts.
    int calcTime(const short* samples, int count, int);

    void forkedLoop() {}
    /// foot  a McFoot
    static void forkedLoopS(void* foot) { static_cast<McFoot*>(foot)->forkedLoop(); }

    static float fmin, fmax; // Hz

    int childId = 0; // of the measuring process; 0 for none
    int stop = 0;
    float frequency = 1.0f;
};
