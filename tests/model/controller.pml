/* The controller's threads, in every order that their steps can take: worker, callers, a poller and the host.
 *
 * Each d_step is one access to shared memory, one call of the mutex or the condition variable, or one call of a peer;
 * between two of them any other thread may run. Labels and inlines bear the names of the class's functions; README.md has
 * the list. The texts of printf are what a trail says; the search skips them. */

#ifndef STEPS
#define STEPS 2        /* steps of a sweep */
#endif
#ifndef COMMANDS
#define COMMANDS 2     /* commands of the caller that starts scans: each a start or a stop */
#endif
#ifndef STOPS
#define STOPS 1        /* stops of another caller */
#endif
#ifndef POLLS
#define POLLS 0        /* rounds of a poller: status, progress, result */
#endif
#ifndef PHASE_STOPS
#define PHASE_STOPS 1  /* calls of onPhaseStop; the host may leave each of them out */
#endif
#ifndef DESTRUCTIONS
#define DESTRUCTIONS 1 /* 0: the host never destroys the controller */
#endif
#ifndef SPURIOUS
#define SPURIOUS 0     /* wake-ups of the worker that nobody caused */
#endif

mtype = { STATE_EXIT, STATE_IDLE, STATE_SCAN, STATE_STOP };
mtype = { scan_not_started, scan_ongoing, scan_finished };
mtype = { nobody, theWorker, theHost, aCaller };
mtype = { none, early, late };
mtype = { complete, stopped, refused, thrown };

/* The members that threads share. */
mtype m_state = STATE_IDLE;
mtype m_status = scan_not_started;
mtype m_mutex = nobody;
bool m_condition;        /* the worker stands in the wait */
bool m_resultsGuard;
byte m_results;          /* the number of samples */
byte m_progress;         /* the samples before the last one */

/* The world around the object. */
bool isAlive = true;
bool isRegistered = true;
bool isTuned;            /* the receiver is away from its configured frequency */
byte callers;            /* those that still have commands or polls to do */
byte spurious = SPURIOUS;

/* What has happened, for the checks only: no thread acts on it. */
bool isSweeping;         /* the worker found STATE_SCAN and has not stored STATE_IDLE yet */
bool isLeaving;          /* the worker will not look at the state again */
bool isGone;             /* scanThread has returned */
bool isRestoreRefused;
bool isBetween;          /* the worker found STATE_IDLE and does not wait yet */
bool isPending;          /* STATE_SCAN is stored and the worker has not found it yet */
bool isStored;           /* somebody stored a state after the last sweep's end */
bool isStartMissed;      /* a start notified between the worker's test and its wait */
bool isStopMissed;       /* so did a stop */
bool isExitStored;
bool isExitOverwritten;
bool isSpinning;         /* the worker found STATE_STOP where there is no sweep to stop */
bool isStopStored;       /* a stop was stored since a start set the status */
bool isCleared;          /* and that stop, or one like it, has cleared the status */
bool isMute;             /* a sweep began while the status was not "ongoing" */
mtype stray = none;      /* a stop was stored while no sweep ran: before it began (early), after it had ended (late) */
mtype ending = none;     /* of the last sweep */

#ifdef DEAD_OBJECT_ALLOWED
#define touch skip
#else
#define touch assert(isAlive)
#endif

#ifdef FAULT_NO_START_GUARD
#define mayStart true
#else
#define mayStart (m_state == STATE_IDLE)
#endif

inline lock(owner)
{
    d_step { m_mutex == nobody -> touch; m_mutex = owner; }
}

inline unlock()
{
    d_step { touch; m_mutex = nobody; }
}

inline lockResults()
{
#ifdef FAULT_NO_RESULTS_GUARD
    skip;
#else
    d_step { !m_resultsGuard -> touch; m_resultsGuard = true; }
#endif
}

inline unlockResults()
{
#ifdef FAULT_NO_RESULTS_GUARD
    skip;
#else
    d_step { touch; m_resultsGuard = false; }
#endif
}

inline store(value)
{
    d_step {
        touch;
        if
        :: value == STATE_STOP && !isSweeping && !isLeaving && stray == none ->
           stray = (m_state == STATE_SCAN -> early : late);
        :: else -> skip;
        fi;
        isExitOverwritten = isExitOverwritten || (m_state == STATE_EXIT && value != STATE_EXIT);
        isExitStored = isExitStored || value == STATE_EXIT;
        isPending = value == STATE_SCAN && !isLeaving;
        isStopStored = isStopStored || value == STATE_STOP;
        isStored = true;
        m_state = value;
        printf("%e: stores %e\n", me, value);
    }
}

/* Wakes the worker if it waits. A notification that comes before the wait is not kept. */
inline notify(value)
{
#ifdef FAULT_NO_NOTIFY
    skip;
#else
    d_step {
        touch;
        isStartMissed = isStartMissed || (isBetween && value == STATE_SCAN);
        isStopMissed = isStopMissed || (isBetween && value == STATE_STOP);
        if
        :: m_condition -> printf("%e: notifies, and the worker is waiting\n", me);
        :: else -> printf("%e: notifies, and nobody is waiting\n", me);
        fi;
        m_condition = false;
    }
#endif
}

inline setState(value)
{
#ifdef FAULT_NOTIFY_FIRST
    notify(value);
    store(value);
#else
    store(value);
    notify(value);
#endif
}

#include "worker.pml"
#include "callers.pml"
#include "properties.pml"

init {
    atomic {
        run scanning();
        callers = 1 + (STOPS > 0 -> 1 : 0) + (POLLS > 0 -> 1 : 0);
        run starting();
        if :: STOPS > 0 -> run stopping(); :: else -> skip; fi;
        if :: POLLS > 0 -> run polling(); :: else -> skip; fi;
        run hosting();
    }
}
