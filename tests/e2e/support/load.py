"""Callers that ask without pause."""

import threading


class Load:
    """Asks a responder from several threads until the with block ends or nobody listens."""

    def __init__(self, responder, callers=4):
        self.responder = responder
        self.answers = []
        self.ended = False
        self.threads = [threading.Thread(target=self._ask) for _ in range(callers)]

    def _ask(self):
        while not self.ended:
            try:
                self.answers.append(self.responder.ask())
            except OSError:
                return

    def __enter__(self):
        for thread in self.threads:
            thread.start()
        return self

    def __exit__(self, *_):
        self.ended = True
        for thread in self.threads:
            thread.join()

    def complete(self):
        return sum(answer.complete for answer in self.answers)

    def cut_short(self):
        """Answers that began and did not end."""
        return [answer for answer in self.answers if answer.output and not answer.complete]
