/* The worker: SpectrumDiagnosticsControllerExecution.cpp. */

mtype = { worker };

proctype scanning()
{
    mtype me = worker;
    byte step;
    mtype status = none;

scanThread:
    lock(theWorker);

idleTest:
    if
    :: d_step { m_state == STATE_IDLE -> touch; printf("worker: finds STATE_IDLE and says that it waits\n"); }
    :: d_step { m_state != STATE_IDLE -> touch; }
       goto scanTest;
    fi;

waitTest:
    if
    :: d_step {
           m_state == STATE_IDLE -> touch;
           isBetween = true;
           printf("worker: tests the state before it waits, STATE_IDLE\n");
       }
    :: d_step { m_state != STATE_IDLE -> touch; printf("worker: finds %e and does not wait\n", m_state); }
       goto scanTest;
    fi;
    d_step {
        touch;
        isBetween = false;
        m_mutex = nobody;
        m_condition = true;
        printf("worker: waits, and gives m_mutex up\n");
    }
end_waiting:
    if
    :: d_step { !m_condition -> touch; printf("worker: wakes\n"); }
    :: d_step {
           m_condition && spurious > 0 -> touch;
           m_condition = false;
           spurious--;
           printf("worker: wakes though nobody notified\n");
       }
    fi;
    lock(theWorker);
#ifdef FAULT_NO_RETEST
    d_step { assert(m_state != STATE_IDLE); }   /* the wait is over: it would say again that it waits */
#endif
    goto waitTest;

scanTest:
    if
    :: d_step {
           m_state == STATE_SCAN -> touch;
           assert(!isSweeping && !isLeaving);   /* never two sweeps, none after an exception */
           isSweeping = true;
           isPending = false;
           isSpinning = false;
           isMute = isMute || m_status != scan_ongoing;
           ending = none;
           step = 0;
           printf("worker: finds STATE_SCAN and sweeps; the status is %e\n", m_status);
       }
    :: d_step {
           m_state != STATE_SCAN -> touch;
           isSpinning = m_state == STATE_STOP;
           printf("worker: finds %e, nothing to sweep\n", m_state);
       }
       goto exitTest;
    fi;

runScan:
    if
    :: d_step { touch; printf("worker: refreshes the properties\n"); }
    :: d_step { touch; printf("worker: the properties provider throws\n"); }
       goto caught;
    fi;
clearSamples:
    lockResults();
    d_step { touch; m_results = 0; }
    unlockResults();

sweep:
#ifdef FAULT_SWEEP_UNLOCKS
    unlock();
    lock(theWorker);
#endif
    if
    :: d_step {
           m_state != STATE_SCAN -> touch;
           ending = stopped;
           printf("worker: finds %e and ends the sweep\n", m_state);
       }
       goto restoreRxFrequency;
    :: d_step { m_state == STATE_SCAN && step == STEPS -> touch; ending = complete; printf("worker: has swept all\n"); }
       goto restoreRxFrequency;
    :: d_step { m_state == STATE_SCAN && step < STEPS -> touch; }
    fi;
    if
    :: d_step { touch; assert(ending == none); isTuned = true; printf("worker: tunes the receiver\n"); }
    :: d_step { touch; ending = refused; printf("worker: tuning is refused\n"); }
       d_step { touch; m_state = STATE_STOP; }
       notify(STATE_STOP);
#ifndef FAULT_REFUSAL_GOES_ON
       goto restoreRxFrequency;
#endif
    :: d_step { touch; printf("worker: tuning throws\n"); }
       goto caught;
    fi;
settle:
    if
    :: d_step { touch; printf("worker: settles\n"); }
    :: d_step { touch; printf("worker: the sleep service throws\n"); }
       goto caught;
    fi;
readClampedRssi:
    if
    :: d_step { touch; printf("worker: reads the RSSI\n"); }
    :: d_step { touch; printf("worker: reading the RSSI fails, the value stands\n"); }
#ifdef FAULT_RSSI_FAILURE_COUNTS
       d_step { step++; }
       goto sweep;
#endif
    :: d_step { touch; printf("worker: reading the RSSI throws\n"); }
       goto caught;
    fi;
storeSample:
    lockResults();
    d_step { touch; assert(ending == none); m_results++; printf("worker: stores a sample\n"); }
    unlockResults();
    d_step { touch; m_progress = step; step++; }
    goto sweep;

restoreRxFrequency:
#ifdef FAULT_CONCLUDES_FIRST
    if :: d_step { touch; m_status = (m_state == STATE_STOP -> scan_not_started : scan_finished); } fi;
#endif
#ifndef FAULT_NO_RESTORE
    if
    :: d_step { touch; isTuned = false; printf("worker: puts the receiver back\n"); }
    :: d_step { touch; isRestoreRefused = true; printf("worker: putting the receiver back is refused\n"); }
    :: d_step { touch; printf("worker: putting the receiver back throws\n"); }
       goto caught;
    fi;
#endif
concludeStatus:
    if
    :: d_step { m_state == STATE_STOP -> touch; status = scan_not_started; }
    :: d_step { m_state != STATE_STOP -> touch; printf("worker: finds %e, so its sweep was not stopped\n", m_state); }
       d_step {
           touch;
           status = (m_status == scan_ongoing -> scan_finished : scan_not_started);
           printf("worker: finds the status %e, decides for %e\n", m_status, status);
       }
    fi;
    d_step { touch; m_status = status; status = none; printf("worker: sets the status, %e\n", m_status); }
    d_step {
        touch;
        assert(!isTuned || isRestoreRefused);           /* the receiver is back */
        assert(ending != none);
        assert(ending != complete || m_results == STEPS);
        isSweeping = false;
        isStored = false;
#ifndef FAULT_NO_FINAL_IDLE
        m_state = STATE_IDLE;
#endif
        printf("worker: ends its sweep and stores STATE_IDLE\n");
    }
    notify(STATE_IDLE);
    d_step { assert(m_state == STATE_IDLE || isStored); }  /* idle, unless another thread stored since */

exitTest:
    if
    :: d_step { m_state == STATE_EXIT -> touch; isLeaving = true; printf("worker: finds STATE_EXIT\n"); }
    :: d_step { m_state != STATE_EXIT -> touch; }
       goto idleTest;
    fi;
    goto leave;

caught:
    if
    :: d_step {
           touch;
           ending = thrown;
           isSweeping = false;
           isLeaving = true;
           printf("worker: catches the exception; %e and %e stay\n", m_state, m_status);
       }
    fi;
#ifdef FAULT_CAUGHT_IN_LOOP
    goto idleTest;
#endif

leave:
    unlock();
    d_step { touch; printf("worker: traces its end\n"); }
    d_step { isGone = true; printf("worker: is gone\n"); }
}
