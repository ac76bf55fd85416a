/* SPDX-License-Identifier: MIT
 * Memory as weakly ordered as C++ permits, for models of a few threads; included, never run.
 *
 * A location keeps all that was ever stored in it. A thread that loads gets any of it that its view does not
 * rule out, not only the newest. Views grow by what is loaded; they pass to other threads with stores that
 * release and loads that acquire, through fences, and with the lock. These are C++'s relaxed, acquire and
 * release operations, but for one liberty, that a store is seen before an earlier load of its thread is done.
 * No thread here has it: readers store nothing, and writers have a fence or a lock in between.
 *
 * All stores to a location happen under one lock, or in one thread: a new entry is the newest for everybody.
 *
 * A thread declares View now, gained, passed and byte pick:
 *   now      what it knows: entries older than now.at[location] it cannot load any more
 *   gained   what an acquire fence will add, from its relaxed loads
 *   passed   what its relaxed stores pass on: what it knew at its last release fence */

#ifndef WRITES
#define WRITES 3
#endif
#define LOCATIONS 6

typedef View { byte at[LOCATIONS] }
typedef Location { byte value[WRITES + 1]; byte newest }
typedef Views { View entry[WRITES + 1] }

Location memory[LOCATIONS];
Views released[LOCATIONS]; /* with each entry, what its loader learns */
View known; /* by whoever unlocked last */
byte locked = 0; /* the thread that holds the lock */

inline larger(to, from) {
    if
    :: from > to -> to = from
    :: else
    fi
}

inline join(to, from) {
    larger(to.at[0], from.at[0]);
    larger(to.at[1], from.at[1]);
    larger(to.at[2], from.at[2]);
    larger(to.at[3], from.at[3]);
    larger(to.at[4], from.at[4]);
    larger(to.at[5], from.at[5])
}

inline choose(location) {
    pick = now.at[location];
    do
    :: pick < memory[location].newest -> pick++
    :: break
    od;
    now.at[location] = pick
}

inline loadRelaxed(location, into) {
    atomic {
        choose(location);
        join(gained, released[location].entry[pick]);
        into = memory[location].value[pick];
        pick = 0
    }
}

inline loadAcquire(location, into) {
    atomic {
        choose(location);
        join(gained, released[location].entry[pick]);
        join(now, released[location].entry[pick]);
        into = memory[location].value[pick];
        pick = 0
    }
}

inline append(location, stored) {
    memory[location].newest++;
    pick = memory[location].newest;
    memory[location].value[pick] = stored;
    now.at[location] = pick
}

inline storeRelaxed(location, stored) {
    atomic {
        append(location, stored);
        join(released[location].entry[pick], passed);
        released[location].entry[pick].at[location] = pick;
        pick = 0
    }
}

inline storeRelease(location, stored) {
    atomic {
        append(location, stored);
        join(released[location].entry[pick], now);
        pick = 0
    }
}

inline fenceAcquire() { atomic { join(now, gained) } }

inline fenceRelease() { atomic { join(passed, now) } }

inline lock() { atomic { locked == 0 -> locked = _pid; join(now, known) } }

inline unlock() { atomic { join(known, now); locked = 0 } }
