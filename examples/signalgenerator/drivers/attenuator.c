#include "attenuator.h"

#include <zorvan/exports.h>

#include <stdio.h>

/* Numbers of the library: module "AnalogBoard", its class "debug message", its levels. */
enum { analog_board = 23, debug_message = 0, level_error = 1, level_info = 3 };

/* Far from the ids that make_id() gives to the methods of C++. */
#define ATTENUATOR_SET_ID 0x80000001u

static int limited(int decibel)
{
    char text[100];
    const int limit = decibel < 0 ? 0 : attenuator_highest_decibel;
    if (decibel >= 0 && decibel <= attenuator_highest_decibel)
        return decibel;
    snprintf(text, sizeof text, "attenuator: %d dB is out of range, using %d dB", decibel, limit);
    println(analog_board, debug_message, text, level_error, 0, __FILE__, __LINE__);
    return limit;
}

static int moved_relays(unsigned before, unsigned after)
{
    int count = 0;
    unsigned moved;
    for (moved = before ^ after; moved != 0; moved &= moved - 1)
        ++count;
    return count;
}

int attenuator_set(struct attenuator *attenuator, int decibel)
{
    unsigned relays;
    int moved;
    startMethod(ATTENUATOR_SET_ID, __FILE__, __LINE__, "attenuator_set");
    relays = (unsigned)((limited(decibel) + attenuator_step_decibel - 1) / attenuator_step_decibel);
    moved = moved_relays(attenuator->relays, relays);
    attenuator->relays = relays;
    /* Asked first: nothing is formatted for a message that nobody wants. */
    if (isActive(analog_board, level_info, debug_message)) {
        char text[100];
        snprintf(text, sizeof text, "attenuator relays 0x%02X, %d have moved", relays, moved);
        println(analog_board, debug_message, text, level_info, 0, __FILE__, __LINE__);
    }
    endMethod(ATTENUATOR_SET_ID);
    return moved;
}
