/* SPDX-License-Identifier: MIT
 * One slot of a buffer, its writers, a reader, and the end of its publisher, on weakly ordered memory.
 *
 * The publisher and a client write, one at a time under the writers' lock; each may die between any two of
 * its steps. The reader tries the slot, looks whether the publisher lives, and tries once more when it does not.
 * Each WITHOUT_… takes away one order that the code asks for; the checker must then find a wrong read. */

#include "weak-memory.pml"

#ifndef READS
#define READS 2 /* attempts of the reader */
#endif

/* Copy c of the slot has the words FIRST(c) and SECOND(c). */
#define SEQUENCE 0
#define FIRST(copy) (1 + 2 * (copy))
#define SECOND(copy) (2 + 2 * (copy))
#define GONE 5 /* 1: the publisher has retired or died */

/* What a person who sees everything knows; no thread reads it but to check. */
byte begun = 0; /* writes; each stores its number in both words */
byte writeOf[WRITES + 1]; /* the write that a sequence belongs to */
byte lastOfPublisher = 0; /* sequence */

inline mayDie() {
    if
    :: true
    :: true -> goto unlocked /* by the kernel, which marks the lock after all that the dead thread stored */
    fi
}

proctype Writer(bool publishes) {
    View now, gained, passed;
    byte pick, next, number;

    do
    :: break
    :: begun < WRITES ->
        lock();
        if
        :: begun == WRITES -> break
        :: else -> atomic { begun++; number = begun }
        fi;
        loadRelaxed(SEQUENCE, next);
        next++;
#ifndef WITHOUT_FENCE_BEFORE_WORDS
        fenceRelease();
#endif
        mayDie();
        storeRelaxed(FIRST(next % 2), number);
        mayDie();
        storeRelaxed(SECOND(next % 2), number);
        mayDie();
        atomic {
            writeOf[next] = number;
            lastOfPublisher = (publishes -> next : lastOfPublisher);
#ifdef WITHOUT_RELEASE_OF_SEQUENCE
            storeRelaxed(SEQUENCE, next)
#else
            storeRelease(SEQUENCE, next)
#endif
        };
        unlock()
    od;
unlocked:
    if
    :: locked == _pid -> unlock()
    :: else
    fi;
    if
    :: publishes ->
#ifdef WITHOUT_RELEASE_OF_LIFE
        storeRelaxed(GONE, 1)
#else
        storeRelease(GONE, 1)
#endif
    :: else
    fi
}

/* One attempt at the slot; sound says whether no writer came in between. */
inline attempt() {
#ifdef WITHOUT_ACQUIRE_OF_SEQUENCE
    loadRelaxed(SEQUENCE, sequence);
#else
    loadAcquire(SEQUENCE, sequence);
#endif
    loadRelaxed(FIRST(sequence % 2), first);
    loadRelaxed(SECOND(sequence % 2), second);
#ifndef WITHOUT_FENCE_AFTER_WORDS
    fenceAcquire();
#endif
    loadRelaxed(SEQUENCE, again);
    atomic {
        sound = (again == sequence);
        if
        :: sound ->
            assert(first == second); /* of one write */
            assert(first == writeOf[sequence]); /* and a complete one: that of the sequence */
            assert(sequence >= newest); /* never back to an older value */
            newest = sequence
        :: else
        fi;
        first = 0; second = 0; again = 0
    }
}

proctype Reader() {
    View now, gained, passed;
    byte pick, gone, sequence, first, second, again, reads, newest;
    bool sound;

    do
    :: reads == READS -> break
    :: else ->
        reads++;
        attempt();
        loadAcquire(GONE, gone);
#ifndef WITHOUT_READING_AGAIN
        if
        :: sound && gone -> attempt()
        :: else
        fi;
#endif
        assert(!sound || !gone || sequence >= lastOfPublisher); /* with the source lost, its last value */
        sequence = 0; gone = 0; sound = false
    od
}

init {
    atomic { run Writer(true); run Writer(false); run Reader() }
}
