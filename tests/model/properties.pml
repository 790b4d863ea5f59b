/* What is asked about the threads beyond the assertions, which stand where they belong. */

/* Something that can happen, shown by a shortest trail: -DFIND=NAME. */
#define COMPLETE (ending == complete && !isSweeping)
#define STOPPED (ending == stopped && !isSweeping)
#define REFUSED (ending == refused && !isSweeping)
#define THROWN (ending == thrown && isGone)

/* At rest: no call is under way, and the worker waits for one that may never come. */
#define atRest (m_condition && callers == 0)
#define LOST_START (atRest && isStartMissed && m_state == STATE_SCAN && m_status == scan_ongoing)
#define LOST_STOP (atRest && isStopMissed && m_state == STATE_STOP)
#define OTHER_LOSS (atRest && m_state != STATE_IDLE && !isStartMissed && !isStopMissed)
#define DROPPED_START (atRest && !isStartMissed && m_state == STATE_IDLE && m_status == scan_ongoing)
#define STOP_TAKEN_BACK (atRest && isCleared && m_state == STATE_IDLE && m_status == scan_finished)
#define EXIT_OVERWRITTEN (atRest && isExitOverwritten && m_state == STATE_IDLE)

#define EARLY_STOP (isSpinning && stray == early && callers == 0)
#define LATE_STOP (isSpinning && stray == late && callers == 0 && ending == complete)
#define OTHER_SPIN (isSpinning && stray == none)
#define MUTE_SCAN (isMute && ending == complete && !isSweeping && m_status == scan_not_started)

#ifdef FIND
active proctype finder()
{
end_finder:
    d_step { FIND -> assert(false); }
}
#endif

/* The destruction returns, unless a stop was stored where there was no sweep to stop. */
ltl ends { <> (!isAlive || stray != none) }
ltl ends_always { <> !isAlive }

/* The same where commands go on during the destruction. */
ltl ends_in_commands { <> (!isAlive || stray != none || isExitOverwritten) }

/* exitThread's wake-up reaches the worker. */
ltl exit_arrives { [] (isExitStored -> <> isGone) }

/* A start is found by the worker or replaced by another state, unless it notified between test and wait. */
ltl start_arrives { [] (isPending -> <> (!isPending || isStartMissed)) }
ltl start_arrives_always { [] (isPending -> <> !isPending) }

/* Once the callers have finished, nothing ends the spinning. */
ltl spins_on { [] ((isSpinning && m_state == STATE_STOP && callers == 0) -> [] (isSpinning && m_state == STATE_STOP)) }
