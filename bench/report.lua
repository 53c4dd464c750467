-- wrk: the result of a run as one line of JSON.
done = function(summary, latency, _)
    local errors = summary.errors
    io.write(string.format(
        '{"requests":%d,"microseconds":%d,"p50":%d,"p99":%d,"errors":%d}\n',
        summary.requests, summary.duration, latency:percentile(50), latency:percentile(99),
        errors.connect + errors.read + errors.write + errors.status + errors.timeout))
end
