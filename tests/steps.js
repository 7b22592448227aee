// require('./steps')(STEPS): takes the steps of a session one by one; each is its name, what is wanted and how it is got.
// What fails is printed, and the number of checks. Returns the exit status.
const { isDeepStrictEqual } = require('util');
module.exports = async steps => {
  const patience = () => new Promise(done => setTimeout(done, 60000, 'no answer').unref());
  let failures = 0;
  for (const [name, wanted, step] of steps) {
    const got = await Promise.race([Promise.resolve().then(step).catch(thrown => thrown.stack), patience()]);
    if (isDeepStrictEqual(got, wanted)) continue;
    ++failures;
    console.log(`FAILED: ${name}\n  wanted ${JSON.stringify(wanted)}\n  got    ${JSON.stringify(got)}`);
  }
  console.log(`${steps.length} checks, ${failures} failed`);
  return failures > 0 ? 1 : 0;
};
