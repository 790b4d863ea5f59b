/* The callers' threads (SpectrumDiagnosticsControllerCommands.cpp) and the host's (SpectrumDiagnosticsController.cpp). */

mtype = { starter, stopper, host };

#define setLocked(value) lock(aCaller); setState(value); unlock()
#if defined(FAULT_COMMANDS_LOCK)
#define setStateOfStart(value) setLocked(value)
#define setStateOfStop(value) setLocked(value)
#elif defined(START_LOCKS)
#define setStateOfStart(value) setLocked(value)
#define setStateOfStop(value) setState(value)
#else
#define setStateOfStart(value) setState(value)
#define setStateOfStop(value) setState(value)
#endif

inline startScan()
{
    if
    :: d_step { mayStart -> touch; printf("%e: starts a scan, finds %e\n", me, m_state); }
       d_step { touch; m_status = scan_not_started; }
       d_step { touch; m_progress = 0; }
       d_step {
           touch;
           assert(!isSweeping);                                         /* the plan is the sweep's while one runs */
           assert(!isTuned || isRestoreRefused || ending == thrown);    /* what it reads, the sweep tunes back to */
           printf("%e: reads the receiver's frequency and plans\n", me);
       }
       if
       :: d_step { touch; printf("%e: the plan fails\n", me); }
       :: d_step {
           touch;
           m_status = scan_ongoing;
           isStopStored = false;
           isCleared = false;
           printf("%e: sets the status, scan_ongoing\n", me);
       }
          setStateOfStart(STATE_SCAN);
       fi;
    :: d_step { !mayStart -> touch; printf("%e: its start is refused, %e\n", me, m_state); }
    fi;
}

inline stopScan()
{
    if
    :: d_step { m_state == STATE_IDLE -> touch; printf("%e: stops, finds STATE_IDLE\n", me); }
    :: d_step { m_state != STATE_IDLE -> touch; printf("%e: stops, finds %e\n", me, m_state); }
       setStateOfStop(STATE_STOP);
    fi;
    d_step { touch; m_progress = 0; printf("%e: sets the progress, 0\n", me); }
    d_step {
        touch;
        m_status = scan_not_started;
        isCleared = isStopStored;
        printf("%e: sets the status, scan_not_started\n", me);
    }
}

/* Starts come from one thread at a time, and so do this one's stops. */
proctype starting()
{
    mtype me = starter;
    byte commands = COMMANDS;

setCommand:
    if
    :: commands > 0 -> commands--; startScan(); goto setCommand;
    :: commands > 0 -> commands--; stopScan(); goto setCommand;
    :: d_step { commands == 0 -> callers--; }
    fi;
}

/* Stops come from any thread. */
proctype stopping()
{
    mtype me = stopper;
    byte commands = STOPS;

setCommand:
    if
    :: commands > 0 -> commands--;
#ifdef TWO_STARTERS
       startScan();
#else
       stopScan();
#endif
       goto setCommand;
    :: d_step { commands == 0 -> callers--; }
    fi;
}

proctype polling()
{
    byte polls = POLLS;
    byte samples;

poll:
    if
    :: d_step { polls > 0 -> polls--; }
    :: d_step { polls == 0 -> callers--; }
       goto done;
    fi;
getStatus:
    d_step { touch; assert(m_status != scan_finished || !isTuned || isRestoreRefused); }   /* "finished": the receiver is back */
getProgress:
    d_step { touch; assert(m_progress < STEPS); }                                          /* never 100 */
getResult:
    lockResults();
    d_step { touch; samples = m_results; }
    d_step { touch; assert(samples == m_results && samples <= STEPS); samples = 0; }       /* no sample comes while it copies */
    unlockResults();
    goto poll;
done:
    skip;
}

proctype hosting()
{
    mtype me = host;
    byte phaseStops = PHASE_STOPS;

onPhaseStop:
    if
    :: phaseStops > 0 ->
       phaseStops--;
#ifndef FAULT_PHASE_STOP_UNLOCKED
       lock(theHost);
#endif
       d_step { assert(!isSweeping); printf("host: onPhaseStop has m_mutex\n"); }          /* it never cuts a sweep short */
       setState(STATE_IDLE);
#ifndef FAULT_PHASE_STOP_UNLOCKED
       unlock();
#endif
       goto onPhaseStop;
    :: phaseStops = 0;
    fi;
    if
    :: DESTRUCTIONS == 0 -> goto done;
    :: else -> skip;
    fi;
#ifndef CALLS_DURING_DESTRUCTION
    callers == 0;
#endif
exitThread:
#ifndef FAULT_EXIT_UNLOCKED
    lock(theHost);
#endif
    setState(STATE_EXIT);
#ifndef FAULT_EXIT_UNLOCKED
    unlock();
#endif
join:
#ifndef FAULT_NO_JOIN
    d_step { isGone -> printf("host: has joined the worker\n"); }
#endif
unregister:
#ifndef FAULT_NO_UNREGISTER
    d_step { touch; isRegistered = false; }
#endif
    d_step { assert(!isRegistered); isAlive = false; printf("host: the controller is destroyed\n"); }
done:
    skip;
}
