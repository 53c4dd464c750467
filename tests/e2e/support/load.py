"""Callers that send requests without pause."""

import threading


class Callers:
    """Threads that run `call` again and again until the with block ends or `call` returns False."""

    def __init__(self, count):
        self.ended = False
        self.threads = [threading.Thread(target=self._run) for _ in range(count)]

    def call(self):
        raise NotImplementedError

    def _run(self):
        while not self.ended and self.call() is not False:
            pass

    def __enter__(self):
        for thread in self.threads:
            thread.start()
        return self

    def __exit__(self, *_):
        self.ended = True
        for thread in self.threads:
            thread.join()


class Load(Callers):
    """Sends requests to a responder until nobody listens on its socket any more."""

    def __init__(self, responder, callers=4):
        super().__init__(callers)
        self.responder = responder
        self.answers = []

    def call(self):
        try:
            self.answers.append(self.responder.ask())
            return True
        except OSError:
            return False

    def complete(self):
        return sum(answer.complete for answer in self.answers)

    def cut_short(self):
        """Answers that have begun but have not ended."""
        return [answer for answer in self.answers if answer.output and not answer.complete]
