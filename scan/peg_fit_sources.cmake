# Sources of the peg fit: candidates, decision, optical registration.
