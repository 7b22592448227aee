// require('../npm')(NAME): a package that scripts/npm-packages has installed; a test without it is left out.
module.exports = name => {
  try {
    return require(`${__dirname}/../out/npm/node_modules/${name}`);
  } catch (missing) {
    console.log(`left out: ${name} is missing (scripts/npm-packages)`);
    process.exit(77);
  }
};
