/* Driver of the step attenuator on the analog board.
 *
 * Plain C, as it came from the board's own firmware: it knows the debug library by <zorvan/exports.h> alone.
 * One thread at a time uses an attenuator. */
#ifndef SIGNALGENERATOR_ATTENUATOR_H
#define SIGNALGENERATOR_ATTENUATOR_H

#ifdef __cplusplus
extern "C" {
#endif

/* Bit n of the relays puts 5 * 2^n decibels into the path. All zero: a straight path. */
struct attenuator
{
    unsigned relays;
};

enum { attenuator_step_decibel = 5, attenuator_highest_decibel = 315 };

/* Sets the attenuation; what lies between two steps gets the higher one, what is out of range the limit, with
 * an error message. Returns how many relays have moved. */
int attenuator_set(struct attenuator *attenuator, int decibel);

#ifdef __cplusplus
}
#endif

#endif
